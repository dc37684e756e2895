' exit: 1
If 1 > 0
Print "x"
End If
