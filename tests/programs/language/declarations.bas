' What may stand in front of declarations and behind them.
Private Const Most = 5
Public title As String = "program"
Global Const Pi As Double = 3.14
Private one, other As Integer
Protected Property level As Integer = 3
Private Dim list() As Integer = Array(1, 2)
Public Var grid(1, 1) As Integer

Interface Named
  Function Name() As String
End Interface
Module Shapes
  Interface Measured
    Function Area() As Integer
  End Interface
End Module
Interface Both
  Inherits Named
  Implements Shapes.Measured
End Interface

Attributes(Deprecated) Class Thing Implements Named, Both
  Attributes( Hidden = "yes", Depth = (1) ) Private mName As String = "thing"
  Private Const Secret As String = "!"
  Const Open = 1
  Attributes(Slow) Public Function Name() As String Implements Named.Name, Both.Name
    Return mName + Secret
  End Function
  Private Attributes(Odd) mSize As Integer
  Function Area() As Integer Implements Shapes.Measured.Area
    Return mSize * mSize
  End Function
  Property Size As Integer
    Get
      Return mSize
    End Get
    Set
      mSize = value
    End Set
  End Property
End Class
Class Small
  Inherits Thing
  Function Name() As String Implements Named.Name
    Return "small " + Super.Name
  End Function
End Class

' What a module computes in the place of a variable.
Module Half
  Private mValue As Integer = 4
  Property Doubled As Integer
    Get
      Return mValue * 2
    End Get
    Set(given As Integer)
      mValue = given \ 2
    End Set
  End Property
  Property Written As String
    Set
      Print "written: " + value
    End Set
  End Property
  Private Property Hidden As String
    Get
      Return "hidden"
    End Get
  End Property
  Function Shown() As String
    Return Hidden + Str(Doubled)
  End Function
End Module

Dim t As New Small
t.Size = Most
Print t.Name + " " + Str(t.Size + Thing.Open) + " " + Str(Both(t).Area)
Print Half.Doubled
Half.Doubled = 20
Doubled += 2
Print Str(Half.Doubled) + " " + Shown
Written = "text"
Print title + " " + Str(level + one + other) + " " + Str(list(1) + grid(0, 0)) + " " + Str(Pi)

' A name that a program has given itself stays its own.
Sub Attributes(n As Integer)
  Print n
End Sub
Attributes(5)
