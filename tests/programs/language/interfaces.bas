' Interfaces, and what may stand for what.
Interface Named
  Function Name() As String
End Interface
Interface Shape
  Inherits Named
  Function Area() As Double
  Sub Grow(by As Double)
End Interface
Interface Comparing
  Function Compare(other As Shape) As Integer
End Interface

Class Square
  Implements Shape, Comparing
  Property Side As Double = 3
  Sub Constructor(side As Double)
    Self.Side = side
  End Sub
  Function Area() As Double
    Return Side * Side
  End Function
  Sub Grow(by As Double)
    Side += by
  End Sub
  Function Name() As String
    Return "square"
  End Function
  Function Compare(other As Shape) As Integer
    Return If(Area > other.Area, 1, -1)
  End Function
End Class
Class Cube Inherits Square
  Function Area() As Double
    Return Super.Area * 6
  End Function
End Class
Class Counted
  Inherits AtomicIntegerQTX
  Implements Stepping
End Class
Interface Stepping
  Function Increment() As Integer
End Interface

Dim shapes() As Shape
shapes.Append(New Square(2))
shapes.Append(New Cube(2))
For Each one As Shape In shapes
  one.Grow(1)
  Print one.Name + " " + Str(one.Area)
Next
Dim s As Shape = shapes(1)
Print s IsA Cube
Print s IsA Named
Print s IsA Comparing
Print Comparing(s).Compare(shapes(0))
Dim n As Named = s
Print n.Name
Print Square(n).Side
Dim o As Object = s
Print Named(o).Name
Dim v As Variant = s
Dim back As Shape = v
Print back Is s
Print If(True, n, s).Name
Dim counted As New Counted
Dim c As Stepping = counted
Call c.Increment
Print counted.Value
s = Nil
Try
  Print s.Area
Catch e As NilObjectException
  Print e.Message
End Try
Try
  n = Named(New Counted)
Catch e As TypeMismatchException
  Print e.Message
End Try
