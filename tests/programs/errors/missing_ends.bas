' exit: 1
' Each block without an end is named by its own first line.
Class First
  Property Size As Integer
    Get
      If True Then
        Return 1
    End Get
    Set
      Print value
  End Property
  Sub Work()
    For i As Integer = 1 To 3
      Print i
  End Sub
  Function Count() As Integer
    Return 1
End Class
Enum Color
  Red
Class Second
  Sub Work()
  End Sub
Print 5
Interface Drawable
  Sub Draw()
Module Tools
  Sub Help()
    While True
  End Sub
