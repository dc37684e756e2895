' exit: 1
' What other languages have, and what to write instead.
Dim s As String = "a"
Dim q As New AtomicQueueQTX
Dim n As New Int128QTX
Print Hypot(3, 4)
Print n.ToString
Print q.Length
Dim f As AtomicFlag
Print s & "b"
Print s & base
Print s, 2
Print s + 5
q.Count = 5
Function F() As Integer
  F = 5
  Return 1
End Function
F = 6
s.Len = 5
Print 340282366920938463463374607431768211455
If s = "a" Then
Else If s = "b" Then
  Print s
End If
Dim x = 5
Dim y = "a"
For k = 1 To 3
Next
