' exit: 1
For i As Integer = 1 To 3
Print i
