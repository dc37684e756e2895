' takes: long
' What holds so many others, each the next one, goes without using the stack up.
Dim v As Variant
For i As Integer = 1 To 250000
  Dim a() As Variant
  a.Append(v)
  v = a
Next
v = Nil
Print "arrays"

For i As Integer = 1 To 250000
  Dim q As New AtomicQueueQTX
  q.Push(v)
  v = q
Next
v = Nil
Print "queues"

Sub Chain(t As Thread)
  Dim held As Variant
  For i As Integer = 1 To 100000
    Dim q As New AtomicQueueQTX
    Dim a() As Variant
    a.Append(held)
    q.Push(a)
    held = q
  Next
End Sub
Dim t As New Thread
AddHandler t.Run, AddressOf Chain
t.Start
t.Join
Print "both"
