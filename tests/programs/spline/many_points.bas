' takes: long
' A hundred thousand points: the curve meets them, and stays between them where they rise.
Const Last = 99999
Dim x() As Double
Dim y() As Double
For i As Integer = 0 To Last
  x.Append(i / 1000)
  y.Append((i / 1000) ^ 2)
Next
Dim s As New SplineQTX(x, y)
Dim off As Integer
Dim outside As Integer
For i As Integer = 1 To Last Step 7
  Dim distance As Double = s.calc(x(i)) - y(i)
  If distance > 0.000001 Or distance < -0.000001 Then off = off + 1
  Dim between As Double = s.calc((x(i - 1) + x(i)) / 2)
  If between < y(i - 1) - 0.000001 Or between > y(i) + 0.000001 Then outside = outside + 1
Next
Print s.count
Print off
Print outside
