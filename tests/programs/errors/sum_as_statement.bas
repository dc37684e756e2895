' exit: 1
Dim x As Integer = 5
x + 1
