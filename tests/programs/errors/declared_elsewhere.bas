' exit: 1
Sub A()
  x = 5
  Dim x As Integer
  If True Then
    Dim inner As String = "a"
  End If
  Print inner
  For i As Integer = 1 To 3
    Print i
  Next
  Print i
End Sub
Print later
Print later
Dim later As Integer = 4
