' Threads change the bounds of arrays of several dimensions while others read and replace their elements.
Dim numbers(3, 3) As Integer
Dim texts(3, 3) As String
Dim strange As New AtomicIntegerQTX

Sub Resize(t As Thread)
  For i As Integer = 1 To 1500
    ReDim numbers(i Mod 7, i Mod 5)
    ReDim texts(i Mod 5, i Mod 7)
  Next
  ReDim numbers(1, 1)
  ReDim texts(1, 1)
End Sub

Sub Use(t As Thread)
  For i As Integer = 1 To 1500
    Try
      numbers(i Mod 4, i Mod 3) = 5
      Dim number As Integer = numbers(i Mod 3, i Mod 4)
      If number <> 5 And number <> 0 Then strange.Increment
      texts(i Mod 4, i Mod 3) = "te" + "xt"
      Dim text As String = texts(i Mod 3, i Mod 4)
      If text <> "" And text <> "text" Then strange.Increment
      If Ubound(texts, 2) > 6 Then strange.Increment
      For Each each1 As Integer In numbers
        If each1 <> 5 And each1 <> 0 Then strange.Increment
      Next
      For Each each1 As String In texts
        If each1 <> "" And each1 <> "text" Then strange.Increment
      Next
      Call texts.Contains("text")
    Catch e As OutOfBoundsException
    End Try
  Next
End Sub

Dim threads(3) As Thread
For i As Integer = 0 To 3
  threads(i) = New Thread
  If i < 2 Then
    AddHandler threads(i).Run, AddressOf Resize
  Else
    AddHandler threads(i).Run, AddressOf Use
  End If
Next
For Each t As Thread In threads
  t.Start
Next
For Each t As Thread In threads
  t.Join
Next
Print Str(strange.Value) + " " + Str(numbers.Count) + " " + Str(texts.Count)
