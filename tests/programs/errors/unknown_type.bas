' exit: 1
Dim x As Intger
