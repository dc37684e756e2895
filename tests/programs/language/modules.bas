' Modules, enumerations, Static variables, parameters of every kind, overloads.
Enum Color
  Red
  Green = 5
  Blue
End Enum
Enum Small As Byte
  First = 255
  Second = First - 5
End Enum

Module Shapes
  Const Sides = 4
  Const Twice = Sides * 2
  Dim made As Integer = 10
  Dim names() As String = Array("a", "b")
  Property grid(2) As Integer
  Private secret As Integer = 3
  Protected Const Hint = "by its module's name"
  Public Function Area(w As Double, h As Double) As Double
    made += secret
    Hidden
    Return w * h
  End Function
  Function Area(side As Double) As Double
    Return side * side
  End Function
  Function Area(text As String) As Double
    Return Len(text)
  End Function
  Private Sub Hidden()
    secret += 1
  End Sub
  Protected Function Guarded() As String
    Return Hint + Str(secret)
  End Function
  Module Inner
    Const Deep = Sides + 1
    Function Nested() As Integer
      Return Deep + Sides
    End Function
  End Module
  Enum Kind
    Round
    Square
  End Enum
  Class Box
    Property Side As Integer = Sides
  End Class
End Module

Module Others
  Function Area(flag As Boolean) As Double
    Return If(flag, 1.5, 0)
  End Function
  Property Made As Integer = 99
End Module

Print Color.Red
Print Color.Blue
Dim c As Color = Color.Green
Print If(c = Color.Green, "green", "other")
Dim tiny As Small = Small.First
tiny += 1
Print tiny
Print Small.Second
Print Area(2, 3)
Print Shapes.Area(4)
Print Area("four")
Print Area(True)
Print made
Print Shapes.made
Print Others.Made
Shapes.made = 1
Print made
Print Sides + Twice
Print Shapes.names(1) + Str(grid.LastIndex)
Print Shapes.Guarded
Print Shapes.Hint
Print Shapes.Inner.Nested + Inner.Deep
Const last = Shapes.Sides + Color.Blue
Print last
Dim kind As Shapes.Kind = Shapes.Kind.Square
Print kind
Dim box As New Shapes.Box
Print box.Side

' Parameters.
Sub Show(a As Integer, Optional b As Integer, Optional c As String = "x")
  Print Str(a) + " " + Str(b) + " " + c
End Sub
Show 1
Show 1, 2
Show 1, 2, "z"

Function Sum(ParamArray values As Integer) As Integer
  Dim total As Integer
  For Each v As Integer In values
    total += v
  Next
  Return total
End Function
Print Sum()
Print Sum(1)
Print Sum(1, 2, 3)
Print Sum(Array(4, 5))
Function Labelled(label As String, ParamArray values() As Variant) As String
  Return label + Str(values.Count)
End Function
Print Labelled("none")
Print Labelled("two", 1, "b")

Function Which(a As Integer) As String
  Return "one Integer"
End Function
Function Which(a As Integer, b As Integer) As String
  Return "two"
End Function
Function Which(a As Double) As String
  Return "a Double"
End Function
Function Which(a As String, ParamArray rest As String) As String
  Return "texts"
End Function
Function Which(a As String) As String
  Return "one text"
End Function
Function Which(a() As Integer) As String
  Return "a list"
End Function
Print Which(1)
Print Which(1, 2)
Print Which(1.5)
Print Which("a")
Print Which("a", "b")
Print Which(Array(1, 2))

' Called as if they were members.
Function Doubled(Extends n As Integer) As Integer
  Return n * 2
End Function
Function Times(Extends text As String, count As Integer) As String
  Dim all As String
  For i As Integer = 1 To count
    all += text
  Next
  Return all
End Function
Function Total(Extends values() As Integer) As Integer
  Return Sum(values)
End Function
Sub Bump(Extends c As AtomicIntegerQTX)
  Call c.Add(10)
End Sub
Dim n As Integer = 21
Print n.Doubled
Print "ab".Times(3)
Print Array(1, 2, 3).Total
Dim atomic As New AtomicIntegerQTX
atomic.Bump
Print atomic.Value

' Static variables live as long as the program.
Function Counted() As Integer
  Static calls As Integer = 100
  Static list() As String, last As Variant
  calls += 1
  list.Append("x")
  Return calls + list.Count * 1000
End Function
Call Counted
Print Counted
Sub Once()
  Static made As New Shapes.Box
  made.Side += 1
  Print made.Side
End Sub
Once
Once

' Values by a condition.
Dim big As UInt64 = 7
Dim b As Byte = 3
Print If(n > 5, big, 0)
Print If(n > 50, b, 300)
Print If(n > 5, 1, 2.5)
Print If(n > 5, 2.5, n)
Print If(n < 5, b, n)
Dim nothing As AtomicIntegerQTX = If(n > 5, Nil, atomic)
Print nothing Is Nil
nothing = If(n > 5, atomic, Nil)
Print nothing Is atomic
Dim mixed As Variant = If(n > 5, "text", 5)
Print mixed
Dim any As Object = If(n > 5, atomic, New Date)
Print any IsA AtomicIntegerQTX
Dim error As RuntimeException = If(n > 5, New NilObjectException("x"), New OutOfBoundsException("y"))
Print error.Message
