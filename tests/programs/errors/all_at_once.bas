' exit: 1
' Every error is reported where it is, and nothing that only follows from one.
Dim a As Intger = 5
Print a
a = a + 1
Print unknwn
Print unknwn + 1
	Print "é中" + nme2
For i As Integer = 1 To
  Print i + "x"
Next
While tru
  Print also
Wend
If a = 1 The
  Print 1
End If
Sub Wrong(x As Strng, y As Integer)
  Print x
  Print y + ""
End Sub
Wrong("a", 1)
Function Odd() As Nothng
  Return 5
End Function
Print Odd()
Const c = 1 / "a"
Print c
Dim n As Integer = "text"
n = n + 1
For Each e As Integer In nowhere
  Print e
Next
Select Case missing
Case 1
  Print absent
End Select
Try
  Print gone
Catch x As Integr
  Print x.Message
End Try
