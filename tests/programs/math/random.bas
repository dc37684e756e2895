' takes: long
' Draws of several threads at once, and what odd parameters give.
Dim inRange As New AtomicIntegerQTX
Sub Draw()
  For i As Integer = 1 To 20000
    Dim waiting As Double = RandomExponentialDistributionQTX(1)
    Dim count As Integer = RandomPoissonDistributionQTX(4)
    Dim normal As Double = RandomNormalDistributionQTX(0, 1)
    If waiting >= 0 And count >= 0 And Abs(normal) < 10 Then Call inRange.Increment
  Next
End Sub
Dim threads(3) As Thread
For i As Integer = 0 To 3
  threads(i) = New Thread
  AddHandler threads(i).Run, AddressOf Draw
  threads(i).Start
Next
For Each t As Thread In threads
  t.Join
Next
Print inRange.Value

Print RandomPoissonDistributionQTX(0)
Print RandomPoissonDistributionQTX(-5)
Print RandomPoissonDistributionQTX(4294967296)
Dim sum As Integer
For i As Integer = 1 To 10000
  sum = sum + RandomPoissonDistributionQTX(4294967299)
Next
Print "2^32 + 3 has the mean " + Str(RoundQTX(sum / 10000))
Print RandomNormalDistributionQTX(5, 0)
Print RandomExponentialDistributionQTX(0)
Print RandomExponentialDistributionQTX(-1) <= 0

For Each p As Double In Array(-0.0001, 1.0001, -1 / 0, 1 / 0)
  Try
    Print NormInvQTX(p)
  Catch e As OutOfBoundsException
    Print e.Message
  End Try
Next
Print NormInvQTX(LogQTX(-1))
Print NormInvQTX(0)
Print NormInvQTX(1, 10, 2)
