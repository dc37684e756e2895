' exit: 1
Dim c As New AtomicIntegerQTX
c.Incremnt
