' takes: long
' When objects end, what keeps them, and what they do then.
Class Node
  Property Next1 As Node
  Property Label As String
  Property Items() As Variant
  Sub Destructor()
    If Label <> "" Then Print "end of " + Label
    If Label = "failing" Then Raise New OutOfBoundsException("caught by nobody")
  End Sub
End Class

Sub Chain()
  Dim first As Node
  For i As Integer = 1 To 300000
    Dim another As New Node
    another.Next1 = first
    first = another
  Next
  first = Nil
End Sub
Chain
Print "a long chain has gone"

Dim kept As Node
Class Phoenix
  Inherits Node
  Sub Destructor()
    Print "not yet"
    If saved < 1 Then
      saved += 1
      kept = Self
    End If
  End Sub
  Shared saved As Integer
End Class
Dim p As New Phoenix
p.Label = "phoenix"
p = Nil
Print kept.Label
kept = Nil

Sub Inside()
  Dim n As New Node
  n.Label = "local"
  n.Items.Append(5)
  n.Items.Append("text")
  Print n.Items(1)
End Sub
Inside

Sub Cycle()
  Dim a As New Node
  Dim b As New Node
  a.Label = "never " + Str(1)
  a.Next1 = b
  b.Next1 = a
  b.Items.Append(a)
  b.Items.Append(a.Label)
End Sub
Cycle

Class Half
  Property n As New Node
  Property bad As Integer = Fail
  Shared Function Fail() As Integer
    Raise New OutOfBoundsException("no value")
  End Function
End Class
Try
  Dim h As New Half
Catch e As OutOfBoundsException
  Print e.Message
End Try
Print "end"
