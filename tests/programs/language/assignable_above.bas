' A class may take the place of one of the two that belong together, and keep the other one.
Class A
 Private m As Integer
 Function V() As Integer
  Return m
 End Function
 Sub V(Assigns n As Integer)
  m = n
 End Sub
 Function W(i As Integer) As Integer
  Return m + i
 End Function
 Sub W(i As Integer, Assigns n As Integer)
  m = n + i
 End Sub
 Property P As Integer
  Get
   Return m
  End Get
  Set
   m = value
  End Set
 End Property
End Class
Class B
 Inherits A
 Function V() As Integer
  Return Super.V * 10
 End Function
 Function W(i As Integer) As Integer
  Return Super.W(i) * 10
 End Function
End Class
Class C
 Inherits A
 Sub V(Assigns n As Integer)
  Super.V = n * 2
 End Sub
End Class
Dim a As A = New B
a.V = 3
Print a.V
a.V += 1
Print a.V
Dim b As New B
b.V = 3
Print b.V
b.W(1) = 4
Print b.W(1)
b.W(1) += 1
Print b.W(1)
Dim c As New C
c.V = 3
Print c.V
c.V += 1
Print c.V
Dim a2 As A = c
a2.V = 1
Print a2.V
Class R
  Dim stored As Integer = 5
  Function X() As Integer
    Return stored
  End Function
End Class
Class S
  Inherits R
  Sub X(Assigns n As Integer)
    stored = n + 100
  End Sub
End Class
Class T
  Inherits S
  Function X() As Integer
    Return Super.X + 1000
  End Function
End Class
Dim s As New S
s.X = 1
s.X += 1
Print s.X
Dim t As New T
t.X = 1
Print t.X
Dim r As R = t
Print r.X
