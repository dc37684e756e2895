' A Thread holds the object whose method it runs, and so may hold itself: such are listed with --leaks, but are
' no leaks.
Class Summer
  Inherits Thread
  Property Total As Integer
  Sub Constructor()
    AddHandler Self.Run, AddressOf Work
  End Sub
  Private Sub Work()
    Total = 5
  End Sub
End Class
Dim s As New Summer
s.Start
s.Join
Print s.Total
Dim t As New Thread
AddHandler t.Run, AddressOf s.Start
AddHandler t.Run, AddressOf Nothing
Sub Nothing()
  Print "let go"
End Sub
t.Start
t.Join
