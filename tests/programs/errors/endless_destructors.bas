' exit: 1
' Each object leaves two others, so that all at once never end.
Class Phoenix
  Shared Count As Integer
  Sub Destructor()
    Count = Count + 1
    Dim again As New Phoenix
    Dim more As New Phoenix
  End Sub
End Class
Dim p As New Phoenix
p = Nil
Print "goes on"
Print Phoenix.Count < 100000

' One that leaves others in turn, each when the one before was let go of, has no end to fear.
Class Spare
  Shared Current As Spare
  Shared Made As Integer
  Sub Constructor()
    Made = Made + 1
  End Sub
  Sub Destructor()
    If Made <= 30000 Then Current = New Spare
  End Sub
End Class
Spare.Current = New Spare
For i As Integer = 1 To 30000
  Spare.Current = Nil
Next
Print Spare.Made

' Nor has one that leaves a few at once.
Class Few
  Shared Left As Integer = 20
  Sub Destructor()
    Left = Left - 1
    If Left > 0 Then
      Dim another As New Few
    End If
  End Sub
End Class
Dim f As New Few
f = Nil
Print Few.Left
