' exit: 1
' A word of the language that is not spelled as it should be is the one mistake of its block.
Enum Level
  Low
  High
End Enm
Clas Item
  Inherit Thread
  Propety Size As Integer
    Get
      Retrun 4
    End Gte
  End Property
  Public Sbu Show()
    Pritn "shown"
  End Sbu
  Func Twice() As Integer
    Return Size * 2
  End Func
End Clas
Modul Tools
  Cosnt Most = 5
End Module
