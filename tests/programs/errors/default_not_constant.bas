' exit: 1
Function Draw() As String
  Return "x"
End Function
Sub Show(s As String = Draw)
  Print s
End Sub
Show
