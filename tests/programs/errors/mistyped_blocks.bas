' exit: 1
' The same of statements.
Din size As Integer
Fro i As Integer = 1 To 3
  Whlie i > 5
    Exti While
  Wnd
Nxet i
Foreach n As Integer In Array(1, 2)
  Selct Case n
  Csae 1
    Print n
  Esle
    Print 2
  End Selct
Next n
Tyr
  Rasie New RuntimeException("x")
Cach e As RuntimeException
  Print e.Message
End Tyr
If size > 1 Then
  Print 1
Elsif size > 2 Then
  Print 2
Finaly
End
Sub Work(n As Integer)
  If n > 1 Then
    Print n
  End
End
Edit 5
