' exit: 1
#If DebugBuild Then
  Const Level = 2
  Dim x As Integer = 1
  #If TargetMacOS Then
    x = 2
  #Else
    x = 3
  #EndIf
#ElseIf TargetLinux Then
  Const Level = 1
  nonsense here
#Else
  Const Level = 0
#EndIf
#Pragma BackgroundTasks False
Print x + Level
