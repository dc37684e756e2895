' takes: long
Function Deep(n As Integer) As Integer
  Return Deep(n + 1) + 1
End Function
Try
  Print Deep(0)
Catch e As StackOverflowException
  Print e.Message
End Try
Dim a() As Integer
Try
  ReDim a(1000000000000)
Catch e As OutOfMemoryException
  Print e.Message
End Try
Dim s As String = "0123456789"
Try
  For i As Integer = 1 To 60
    s = s + s
  Next
Catch e As OutOfMemoryException
  Print e.Message
End Try
