' exit: 1
' Errors in classes are reported as all others are, and nothing that follows from them.
Class Shape
  Dim width As Intger
  height As Double = "high"
  Private secret As Integer
  Sub Constructor(w As Integer, h As Doubl)
    width = w
    height = h + "m"
  End Sub
  Function Area() As Double
    Return widht * height
  End Function
  Property Scale As Double
    Get
      Return factor
    End Get
    Set(value As Strng)
      secret = value + unknwn
    End Set
  End Property
  Print "not here"
  For i As Integer = 1 To 3
    Print i
  Next
  Shared Function Make(count As Integer) As Shape
    Return New Shape(1, 2)
  End Function
End Class
Class Square Inherits Shap
  Sub Grow(by As Integer)
    width = width + by
    Super.Grow(by)
    Return 5
  End Sub
End Class
Dim s As New Square
s.Grow("a")
Dim t As Shape = Shape.Mak(5)
Print t.width
Print t.Aera
