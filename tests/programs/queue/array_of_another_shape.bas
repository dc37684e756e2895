' options: --array-shape other
' An array that the library cannot look into is refused; an empty one needs no look.
Dim q As New AtomicQueueQTX
Dim values() As Variant
q.Add(values)
values.Append(1)
Try
  q.Add(values)
Catch e As UnsupportedOperationException
  Print e.Message
End Try
Print q.Count
