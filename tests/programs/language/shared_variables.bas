' Threads that read and replace the same module-level variables: each sees some value that was there.
Dim stopping As Boolean
Dim number As Integer = 7
Dim fraction As Double = 0.5
Dim text As String = "first"
Dim shared As New AtomicIntegerQTX
Dim strange As New AtomicIntegerQTX
Dim rounds As New AtomicIntegerQTX

Sub Read()
  For i As Integer = 1 To 3000
    Dim held As AtomicIntegerQTX = shared
    If held.Value Mod 7 <> 0 Then Call strange.Increment
    If text <> "first" And text <> "second" Then Call strange.Increment
    If number Mod 7 <> 0 Then Call strange.Increment
    If fraction <> 0.5 And fraction <> 1.5 Then Call strange.Increment
    Call rounds.Increment
  Next
End Sub

Sub Write()
  Dim n As Integer
  While Not stopping
    n = n + 7
    Dim fresh As New AtomicIntegerQTX
    fresh = n
    shared = fresh
    number = n
    text = "sec" + "ond"
    fraction = 1.5
  Wend
End Sub

Dim threads(4) As Thread
For i As Integer = 0 To 4
  threads(i) = New Thread
  If i < 3 Then
    AddHandler threads(i).Run, AddressOf Read
  Else
    AddHandler threads(i).Run, AddressOf Write
  End If
  threads(i).Start
Next
For i As Integer = 0 To 4
  If i = 3 Then stopping = True
  threads(i).Join
Next
Print Str(strange.Value) + " of " + Str(rounds.Value)
