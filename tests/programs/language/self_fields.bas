' The fields of the object whose method runs, as operands, targets and by reference.
Class Cell
  Dim Count As Integer
  Dim Ratio As Double = 0.5
  Dim Small As Int8 = 127
  Dim Part As Single = 0.25
  Dim Flag As Boolean
  Dim Deeper As Cell

  Sub Twice(ByRef n As Integer)
    n = n * 2
    Count = Count + 1
  End Sub
  Function Fill(depth As Integer) As Integer
    While Count < 4
      Ratio = Ratio + Count
      Count = Count + 1
    Wend
    Small = Small + 1
    Part += 0.25
    Flag = Count > 3 And Not Flag
    If depth > 0 Then
      Deeper = New Cell
      Count += Deeper.Fill(depth - 1)
    End If
    Twice(Count)
    Return Count + Self.Count
  End Function
End Class

Dim c As New Cell
Print c.Fill(2)
Print Str(c.Count) + " " + Str(c.Ratio) + " " + Str(c.Small) + " " + Str(c.Part) + " " + Str(c.Flag)
Print Str(c.Deeper.Count) + " " + Str(c.Deeper.Deeper.Count) + " " + Str(c.Deeper.Deeper.Ratio)
