' prints: docs/queue_ends.svg
' A queue at work, as a picture (SVG): what each call leaves in it, and gives.
'
'   ./qtx run examples/picture_queue.bas > queue_ends.svg

Dim q As New AtomicQueueQTX
Dim y As Integer = 48

Sub Text(kind As String, x As Integer, words As String)
  Print "<text class='" + kind + "' x='" + Str(x) + "' y='" + Str(y + 19) + "'>" + words + "</text>"
End Sub

' One row: the call, what it gave, and the values, front first.
Sub Row(what As String, result As String = "")
  Text("call", 20, what)
  Text("result", 180, result)
  Dim x As Integer = 260
  For Each value As Variant In q.Values
    Print "<rect class='value' x='" + Str(x) + "' y='" + Str(y) + "' width='60' height='28' rx='4'/>"
    Text("in", x + 30, value)
    x = x + 66
  Next
  If q.Count = 0 Then Text("result", 260, "empty")
  y = y + 36
End Sub

Print "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 690 385' font-family='sans-serif' font-size='13'>"
Print "<title>What Push, Insert, PopFirst and PopLast leave in a queue</title>"
Print "<style>.paper{fill:#fff}text{fill:#222}.call{font-family:monospace}.result{fill:#c60}.in{text-anchor:middle}"
Print ".value{fill:#dcebff;stroke:#06c}"
Print "@media(prefers-color-scheme:dark){.paper{fill:#1e2029}text{fill:#ddd}.result{fill:#fa5}"
Print ".value{fill:#243a5e;stroke:#6af}}</style>"
Print "<rect class='paper' width='690' height='385'/>"
Print "<text x='20' y='28'>call</text><text x='180' y='28'>gives</text>"
Print "<text x='260' y='28'>leaves, from front to back</text>"
Row("(a new queue)")
q.Push("one")
Row("Push(""one"")")
q.Push("two")
Row("Push(""two"")")
q.Push("three")
Row("Push(""three"")")
q.Insert("first")
Row("Insert(""first"")")
Dim value As Variant = q.PopFirst
Row("PopFirst", value)
value = q.PopLast
Row("PopLast", value)
value = q.TopValue
Row("TopValue", value)
q.Clear
Row("Clear")
Print "</svg>"
