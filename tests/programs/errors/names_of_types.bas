' exit: 1
' The names of the language's own types and its words are taken.
Class Integer
  Property X As Integer
End Class
Module Double
  Const A = 1
End Module
Enum Boolean
  Yes
End Enum
Interface Object
  Sub X()
End Interface
Delegate Sub Variant()
Class Print
End Class
Structure String
End Structure
Module Inner
  Class Currency
  End Class
End Module
Dim i As Integer = 3
Print i + 1
Dim d As New Integer
