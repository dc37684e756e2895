' Arguments of Subs and Functions: in order, by value and by reference, and as defaults.
Dim log As String
Function Noted(n As Integer) As Integer
  log = log + Str(n)
  Return n
End Function
Sub Three(a As Integer, b As Integer, c As Integer)
  log = log + "=" + Str(a + b + c)
End Sub
Three(Noted(1), Noted(2), Noted(3))
Three Noted(4), Noted(5), Noted(6)
Call Three(Noted(7), Noted(8), Noted(9))
Print log

' By reference a variable of each kind comes back changed.
Sub Change(ByRef i8 As Int8, ByRef u16 As UInt16, ByRef i32 As Int32, ByRef u32 As UInt32, ByRef flag As Boolean, ByRef s As Single, ByRef c As Currency, ByRef text As String)
  i8 += 100
  u16 += 65535
  i32 *= 65536
  u32 -= 5
  flag = Not flag
  s /= 3
  c *= 2
  text += "!"
End Sub
Dim i8 As Int8 = 100
Dim u16 As UInt16 = 3
Dim i32 As Int32 = 65535
Dim u32 As UInt32 = 4
Dim flag As Boolean
Dim s As Single = 1
Dim c As Currency = 1.25
Dim text As String = "text"
Change(i8, u16, i32, u32, flag, s, c, text)
Print Str(i8) + " " + Str(u16) + " " + Str(i32) + " " + Str(u32) + " " + Str(flag) + " " + Str(s) + " " + Str(c) + " " + text
Sub Twice(ByRef a As Integer, ByVal b As Integer)
  a = a * 2
  b = b * 2
End Sub
Dim n As Integer = 5
Dim list() As Integer = Array(7)
Twice(n, n)
Twice(list(0), n)
Print Str(n) + " " + Str(list(0))
Twice list(0), (n)
Print list(0)
Dim a As New AtomicIntegerQTX
a = 3
Dim expected As Int64 = 4
Print Str(a.CompareExchange(expected, 9)) + " " + Str(expected)
Print Str(a.CompareExchange(expected, 9)) + " " + Str(a.Value)
Sub Passed(ByRef o As Int128QTX, ByRef v As Variant, ByRef words() As String)
  o = New Int128QTX(8)
  v = "new"
  words = Split("x y", " ")
End Sub
Dim o As Int128QTX
Dim v As Variant
Dim words() As String
Passed(o, v, words)
Print Str(o) + " " + v + " " + words(1)

' Defaults, parameters that are arrays, and names that are used before they are declared.
Sub Defaults(a As Integer = -1, d As Double = 0.5, b As Boolean = True, s As String = "s", c As Currency = 2, single As Single = 0.25)
  Print Str(a) + " " + Str(d) + " " + Str(b) + " " + s + " " + Str(c) + " " + Str(single)
End Sub
Defaults
Defaults()
Defaults(2, 3, False, "t", 4.5, 5)
Function Sum(list() As Integer, other As Integer() = Nil) As Integer
  Dim total As Integer
  For Each one As Integer In list
    total += one
  Next
  For Each one As Integer In other
    total += one
  Next
  Return total
End Function
Print Str(Sum(list)) + " " + Str(Sum(list, list))
Print Later(3)
Function Later(n As Integer) As Integer
  If n = 0 Then Return 0
  Return n + Later(n - 1)
End Function
If Later(2) = 3 Then Three(1, 1, 1) Else Print "never"
Print log.Right(2)

' What is called for its effect, and what for its value.
Noted(0)
Call a.Add(1)
a.Add(1)
a.Add 1
Print a.Value
Print(a)
Print
Print a.Add(a.Add(0)) _
  + 1
Dim name, other As String, count As Integer = 2
name = "Dim"
Print name + other + Str(count)
Var made As New Date, again As Date = made
Print again Is made
