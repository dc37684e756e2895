' A queue holds queues: they go with it, and nothing waits for itself.
Dim outer As New AtomicQueueQTX
For i As Integer = 1 To 3
  Dim inner As New AtomicQueueQTX
  inner.Push(i)
  outer.Push(inner)
Next
Dim first As AtomicQueueQTX = outer.PopFirst
Print first.PopFirst
Print outer.Count
outer.Clear
outer = Nil
first = Nil
