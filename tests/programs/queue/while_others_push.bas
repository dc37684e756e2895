' A queue added to itself, listed and compared while other threads push: every result is of one moment.
Dim q As New AtomicQueueQTX
Dim other As New AtomicQueueQTX
Dim running As New AtomicIntegerQTX

Sub Fill()
  For i As Integer = 1 To 5000
    q.Push(1)
    other.Insert(1)
  Next
  Call running.Decrement
End Sub

running.Value = 2
Dim a As New Thread
Dim b As New Thread
AddHandler a.Run, AddressOf Fill
AddHandler b.Run, AddressOf Fill
a.Start
b.Start
Dim odd As Integer
For i As Integer = 1 To 4
  Dim before As Integer = q.Count
  q.Add(q)
  If q.Count < 2 * before Then odd = odd + 1
  Dim values() As Variant = q.Values
  If values.Ubound + 1 < 2 * before Then odd = odd + 1
  If q.Count < values.Ubound + 1 Then odd = odd + 1
  If q <> q Then odd = odd + 1
  If (q < other) = (q >= other) And running.Value = 0 Then odd = odd + 1
Next
a.Join
b.Join
Print odd
Print other.Count
Print q.Count >= 10000
