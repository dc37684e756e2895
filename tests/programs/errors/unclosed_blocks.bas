' exit: 1
' A block without its end is named, and what is around it goes on.
Sub A()
  For i As Integer = 1 To 3
    If i = 2 Then
      Print i
  Next
End Sub
For x As Integer = 1 To 2
  For y As Integer = 1 To 2
    Print y
Next x
Sub B()
  While True
    Print 1
Function C() As Integer
  Return 1
End Function
Do
  Select Case 1
  Case 1
    Print 1
Loop
Try
  Print 1
