' options: --host-version 2020.02
Dim x() As Double = Array(0.0, 1.0, 2.0)
Dim y() As Double = Array(0.0, 10.0, 20.0)
Dim s As New SplineQTX(x, y)
Print s.x(2)
Print s.y(1)
Print Format(s.calc(1.5), "0.000")
