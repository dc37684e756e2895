' Threads that let one text grow, replace and read it: each reader sees what was there at some moment, whole,
' and what it has read stays.
Dim shared As String
Dim journal As New Journal
Dim wrong As New AtomicIntegerQTX

Class Journal
  Property Text As String
End Class

Sub Check(text As String)
  Dim length As Integer = Len(text)
  If text <> "ab".Repeated(length) Then wrong.Increment
End Sub

Function Repeated(Extends part As String, length As Integer) As String
  Dim text As String
  For i As Integer = 1 To length \ 2
    text += part
  Next
  Return text
End Function

Sub Work(t As Thread)
  For i As Integer = 1 To 1000
    shared = shared + "ab"
    shared += "a" + "b"
    journal.Text += "ab"
    journal.Text = journal.Text + "a" + "b"
    Dim seen As String = shared
    Dim mine As String = journal.Text
    Check(seen)
    Check(mine)
    mine += "ab"
    Check(mine)
    If Len(shared) > 200 Then shared = ""
    If Len(journal.Text) > 200 Then journal.Text = "ab"
    Check(seen)
  Next
End Sub

Dim threads(3) As Thread
For i As Integer = 0 To 3
  threads(i) = New Thread
  AddHandler threads(i).Run, AddressOf Work
  threads(i).Start
Next
For Each t As Thread In threads
  t.Join
Next
Print wrong.Value
