' Threads replace and read the same variables all the while.
Dim v As Variant
Dim o As Date
Dim s As String
Sub W()
  Dim t As Variant
  Dim u As Date
  For i As Integer = 1 To 3000
    v = i
    t = v
    o = New Date
    u = o
    s = Str(i)
    t = s
  Next
End Sub
Dim a As New Thread
AddHandler a.Run, AddressOf W
Dim b As New Thread
AddHandler b.Run, AddressOf W
Dim c As New Thread
AddHandler c.Run, AddressOf W
a.Start
b.Start
c.Start
a.Join
b.Join
c.Join
Print "done"
