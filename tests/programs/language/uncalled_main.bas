' A Main that nothing calls.
Sub Main()
  Print "never"
End Sub
