' Delegates: of Subs, of methods, of what modules and classes share.
Delegate Function Combine(a As Integer, b As Integer) As Integer
Delegate Sub Change(ByRef n As Integer)
Delegate Sub Note()

Function Plus(a As Integer, b As Integer) As Integer
  Return a + b
End Function
Function Plus(a As String) As Integer
  Return Len(a)
End Function
Sub Increment(ByRef n As Integer)
  n += 1
End Sub
Module Tools
  Function Minus(a As Integer, b As Integer) As Integer
    Return a - b
  End Function
End Module

Class Scale
  Property Factor As Integer = 3
  Property Notify As Note
  Function Scaled(a As Integer, b As Integer) As Integer
    Return (a + b) * Factor
  End Function
  Shared Function Largest(a As Integer, b As Integer) As Integer
    Return If(a > b, a, b)
  End Function
  Function Own() As Combine
    Return AddressOf Scaled
  End Function
  Function OwnShared() As Combine
    Return AddressOf Largest
  End Function
  Sub Work(t As Thread)
    Factor = 50
  End Sub
  Sub Ring()
    If Notify <> Nil Then Notify.Invoke
  End Sub
End Class
Class Wide
  Inherits Scale
  Function Scaled(a As Integer, b As Integer) As Integer
    Return 1000 + Super.Scaled(a, b)
  End Function
End Class

Dim f As Combine = AddressOf Plus
Print f.Invoke(3, 4)
Print f(5, 6)
f = AddressOf Tools.Minus
Print f(5, 6)
Dim s As New Scale
f = AddressOf s.Scaled
Print f(1, 2)
s.Factor = 10
Print f(1, 2)
s = New Wide
f = AddressOf s.Scaled
Print f(1, 2)
Print s.Own.Invoke(2, 2)
Print s.OwnShared.Invoke(2, 3)
f = AddressOf Scale.Largest
Print f(7, 8)
f = New Combine(AddressOf Plus)
Print f(1, 1)
Print Combine(AddressOf Plus).Invoke(2, 2)
Dim g As Change = AddressOf Increment
Dim n As Integer = 1
g(n)
g.Invoke n
Print n

Function Apply(how As Combine, a As Integer, b As Integer) As Integer
  Return how(a, b)
End Function
Print Apply(AddressOf Plus, 20, 22)
Dim all(1) As Combine
all(0) = AddressOf Plus
all(1) = AddressOf Tools.Minus
For Each one As Combine In all
  Print one(9, 4)
Next
Dim v As Variant = all(1)
Print Combine(v).Invoke(3, 1)

Sub Rung()
  Print "rung"
End Sub
s.Ring
s.Notify = AddressOf Rung
s.Ring

Dim t As New Thread
AddHandler t.Run, AddressOf s.Work
t.Start
t.Join
Print s.Factor

f = Nil
Try
  Print f(1, 2)
Catch e As NilObjectException
  Print e.Message
End Try
s = Nil
Try
  f = AddressOf s.Scaled
Catch e As NilObjectException
  Print e.Message
End Try
