' exit: 1
Dim next As Integer
