' exit: 1
Const Third As Integer = 5 \ (3 - 3)
Print Third
