' exit: 1
' What stands behind the missing end is no further mistake.
Class Room
  Name As String
  Function Full() As String
    Return "the " + Name
  End Function

Enum Way
  Up
  Down
End Enum
Class Door
End Class
Function Twice(s As String) As String
  Return s + s
End Function
Dim hall As New Room
Dim door1 As New Door
hall.Name = Twice("hall")
Print hall.Full
Dim w As Way = Way.Up
