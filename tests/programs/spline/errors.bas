' What is refused, with its message.
Dim three() As Double = Array(0.0, 1.0, 2.0)
Dim two() As Double = Array(0.0, 1.0)
Dim none() As Double

Sub TryCalc(s As SplineQTX)
  Try
    Print s.calc(1)
  Catch e As RuntimeException
    Print e.Message
  End Try
End Sub

Try
  Dim refused As New SplineQTX(three, two)
  Print "not reached"
Catch e As UnsupportedOperationException
  Print e.Message
End Try
TryCalc(New SplineQTX(two, two))
TryCalc(New SplineQTX(none, none))
TryCalc(New SplineQTX(three, three))

Dim s As New SplineQTX(three, three)
For i As Integer = -1 To 3 Step 4
  Try
    Print s.a(i)
  Catch e As OutOfBoundsException
    Print e.Message
  End Try
  Try
    Print s.x(i)
  Catch e As OutOfBoundsException
    Print e.Message
  End Try
Next
