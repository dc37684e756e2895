' takes: long
' Two threads hand a hundred thousand values each to two others; a third keeps looking.
Const PerThread = 100000
Dim q As New AtomicQueueQTX
Dim sums As New AtomicIntegerQTX
Dim taken As New AtomicIntegerQTX

Sub Give()
  For i As Integer = 1 To PerThread
    q.Push(i)
  Next
End Sub

Sub Take()
  While taken.Value < 2 * PerThread
    Dim v As Variant = q.PopFirst
    If Not (v Is Nil) Then
      Dim n As Integer = v
      Call sums.Add(n)
      Call taken.Increment
    End If
  Wend
End Sub

Dim threads(3) As Thread
For i As Integer = 0 To 3
  threads(i) = New Thread
  If i < 2 Then
    AddHandler threads(i).Run, AddressOf Give
  Else
    AddHandler threads(i).Run, AddressOf Take
  End If
  threads(i).Start
Next
Dim negative As Integer
While taken.Value < 2 * PerThread
  If q.Count < 0 Then negative = negative + 1
Wend
For Each t As Thread In threads
  t.Join
Next
Print q.Count
Print taken.Value
Print sums.Value
Print negative
