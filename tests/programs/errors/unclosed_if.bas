' exit: 1
If 1 > 0 Then
  Print 1
