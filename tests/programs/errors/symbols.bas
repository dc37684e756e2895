' exit: 1
' Symbols of other languages, and the line that goes on.
Dim s As String = "a"
Dim n As Integer
Dim q() As Integer
If s == "a" Then Print 1
If s != "a" Then Print 1
Print 5 % 2
Print q[1]
n++
Print 1 +
  2
Const five = 5
five = 6
Dim list() As Integer
Print list.Length
Print 2 × 3
Print 1 – 2
