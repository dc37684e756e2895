' Points in disorder and equal X: the interval is the first whose end is not left of x.
Dim x() As Double = Array(0.0, 4.0, 2.0, 6.0, 6.0, 8.0)
Dim y() As Double = Array(1.0, 2.0, 3.0, 4.0, 5.0, 6.0)
Dim s As New SplineQTX(x, y)

' The same, step by step.
Function Literal(at As Double) As Double
  Dim k As Integer = 5
  For i As Integer = 1 To 5
    If Not (at > x(i)) Then
      k = i
      Exit
    End If
  Next
  Return s.d(k) * at * at * at + (s.c(k) * at * at + (s.b(k) * at + s.a(k)))
End Function

Dim different As Integer
For i As Integer = -10 To 100
  Dim at As Double = i / 10
  Dim found As Double = s.calc(at)
  Dim expected As Double = Literal(at)
  If found <> expected And found = found Then different = different + 1
Next
Print different
