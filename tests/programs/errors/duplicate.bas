' exit: 1
Dim a As Integer
Dim A As Double
