' exit: 1
' The same in interfaces, enumerations, modules and delegates.
Interface Drawable
  Sub Draw(at As Integer)
  Function Name() As Strin
  Print 1
End Interface
Class Circle Implements Drawable
  Sub Draw(at As String)
  End Sub
  Function Name() As String
  End Function
End Class
Enum Color
  Red = "red"
  Green Blue
  Yellow
End Enum
Print Color.Green
Print Color.Yelow
Module Tools
  Dim total As Integer = "none"
  Function Twice(n As Integer) As Integer
    Return n * "2"
  End Function
End Module
Print Tools.Twise(2)
Delegate Sub Work(n As Intgr)
Dim w As Work = AddressOf Nobody
