' exit: 1
Dim x As Integer = 4
Print x
Const Sum As Integer = 5 + x
