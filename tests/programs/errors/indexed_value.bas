' exit: 1
Dim x As Integer
Print x(1)
