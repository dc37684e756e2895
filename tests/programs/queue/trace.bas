' options: --trace
' The trace of each member, the moves of the elements behind included.
Dim q As New AtomicQueueQTX
q.Push("a")
q.Push("b")
q.Insert("c")
Call q.PopFirst
Call q.PopLast
q.TopValue = "d"
q.TopValue = "e"
q.TopValue = "f"
Print q.Count
q.Clear
