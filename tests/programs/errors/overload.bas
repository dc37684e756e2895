' exit: 1
Dim c As New AtomicIntegerQTX
Print c.Add("x")
