' options: --host-version 2020.02
Dim q As New AtomicQueueQTX
Dim values() As Variant = Array("a", 2, 3.5)
q.Add(values)
For Each v As Variant In q.Values
  Print v
Next
