' exit: 1
Dim n As Integer = "text"
