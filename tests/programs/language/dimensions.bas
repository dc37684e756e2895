' Arrays of several dimensions: elements, bounds, what ReDim keeps, and where such an array may stand.
Dim board(2, 3) As Integer
board(0, 0) = 1
board(2, 3) = 7
board(1, 2) += 5
board(1, 2) += board(2, 3)
Print Str(board(0, 0)) + " " + Str(board(1, 2)) + " " + Str(board(2, 3)) + " " + Str(board(0, 3))
Print Str(Ubound(board)) + " " + Str(Ubound(board, 1)) + " " + Str(Ubound(board, 2)) + " " + Str(board.Ubound(2))
Print Str(board.LastIndex) + " " + Str(board.LastRowIndex(2)) + " " + Str(board.Count)
Print Str(board.Contains(12)) + " " + Str(board.Contains(13))
Dim row() As Integer = Array(4, 5)
Print Str(Ubound(row, 1)) + " " + Str(row.LastIndex(1))

Function Shown(a(,) As Integer) As String
  Dim text As String
  For i As Integer = 0 To Ubound(a)
    For j As Integer = 0 To Ubound(a, 2)
      text += Str(a(i, j)) + " "
    Next
    text += "/ "
  Next
  Return text
End Function

' What fits is kept; the rest is new.
Sub Fill(a(,) As Integer)
  Dim n As Integer
  For i As Integer = 0 To Ubound(a)
    For j As Integer = 0 To Ubound(a, 2)
      n += 1
      a(i, j) = n
    Next
  Next
End Sub
Dim sizes() As Integer = Array(3, 3, 2, 4, 1, 1, 0, 5, 4, 0, -1, 2, 2, -1, 2, 2)
Dim changing(1, 2) As Integer
For i As Integer = 0 To sizes.LastIndex Step 2
  Fill(changing)
  ReDim changing(sizes(i), sizes(i + 1))
  Print Str(sizes(i)) + ", " + Str(sizes(i + 1)) + ": " + Shown(changing) + Str(changing.Count)
Next

' Three dimensions, whose last index For Each counts fastest.
Dim cube(1, 1, 1) As Double
Dim n As Integer
For x As Integer = 0 To 1
  For y As Integer = 0 To 1
    For z As Integer = 0 To 1
      n += 1
      cube(x, y, z) = n / 2
    Next
  Next
Next
ReDim cube(2, 1, 0)
Dim line As String
For Each d As Double In cube
  line += Str(d) + " "
Next
Print line + Str(Ubound(cube, 1)) + Str(Ubound(cube, 2)) + Str(Ubound(cube, 3))
Dim eight(1, 1, 1, 1, 1, 1, 1, 1) As UInt8
eight(1, 0, 1, 0, 1, 0, 1, 1) = 300 - 45
eight(1, 0, 1, 0, 1, 0, 1, 1) += 2
Print Str(eight(1, 0, 1, 0, 1, 0, 1, 1)) + " " + Str(eight(1, 0, 1, 0, 1, 0, 1, 0)) + " " + Str(eight.Count)

' Of texts, Variants, objects, Singles and Booleans.
Dim names(1, 1) As String
names(0, 1) = "b" + Str(1)
names(1, 0) = "c" + Str(2)
names(0, 1) += "!"
ReDim names(0, 2)
For Each name As String In names
  Print "[" + name + "]"
Next
Dim mixed(,) As Variant
ReDim mixed(0, 2)
mixed(0, 0) = 1
mixed(0, 1) = "two"
mixed(0, 2) = names
Print Str(mixed(0, 1)) + " " + Str(mixed(0, 2)) + " " + Str(mixed(0, 0) = 1)
Dim objects(1, 0) As AtomicIntegerQTX
objects(1, 0) = New AtomicIntegerQTX
objects(1, 0) = 41
objects(1, 0).Increment
Print Str(objects(1, 0).Value) + " " + Str(objects(0, 0) Is Nil)
Dim singles(0, 1) As Single
singles(0, 1) = 0.1
Dim flags(1, 1) As Boolean
flags(1, 1) = Not flags(0, 1)
Print Str(singles(0, 1)) + " " + Str(flags(1, 1)) + " " + Str(flags(1, 0))

' In a Variant, by reference, as a result, a default, a field and a property.
Dim held As Variant = board
Dim again(,) As Integer = held
Print Str(again Is board) + " " + Str(again(1, 2)) + " " + Str(held.IsArray) + " " + Str(held.Type - Variant.TypeArray)
Try
  Dim cubic(,,) As Integer = held
Catch e As TypeMismatchException
  Print e.Message
End Try
Try
  Dim flat() As Integer = held
Catch e As TypeMismatchException
  Print e.Message
End Try
Function Identity(size As Integer) As Integer(,)
  Dim made(-1, -1) As Integer
  ReDim made(size - 1, size - 1)
  For i As Integer = 0 To size - 1
    made(i, i) = 1
  Next
  Return made
End Function
Sub Replace(ByRef a(,) As Integer, size As Integer)
  a = Identity(size)
End Sub
Print Identity(3)(2, 2)
Replace(again, 2)
Print Shown(again)
Function Rows(a() As Integer) As String
  Return "one dimension"
End Function
Function Rows(a(,) As Integer) As String
  Return "two dimensions"
End Function
Print Rows(row) + ", " + Rows(board)
Function Corner(Extends a(,) As Integer) As Integer
  Return a(Ubound(a), Ubound(a, 2))
End Function
Print board.Corner

Class Plane
  Dim cells(1, 2) As Integer
  Property Names As String(,)
  Shared Property Marks(1, 1) As Integer
  Property Cell(,) As Integer
  Property Both As Integer(,)
    Get
      Return cells
    End Get
    Set
      cells = value
    End Set
  End Property
  Function Across() As Integer(,)
    Return cells
  End Function
  Sub Put(i As Integer, j As Integer, value As Integer)
    cells(i, j) = value
  End Sub
End Class
Dim wing As New Plane
wing.Put(1, 2, 9)
Print Str(wing.cells(1, 2)) + " " + Str(wing.Both(1, 2)) + " " + Str(wing.Across(1, 2)) + " " + Str(wing.Cell.Count)
wing.Both = Identity(1)
wing.Names = names
Plane.Marks(1, 0) = 3
Print Str(wing.cells.Count) + " " + wing.Names(0, 1) + " " + Str(Plane.Marks(1, 0) + Plane.Marks(0, 1))
Module Shared1
  Dim table(1, 1) As Integer
End Module
table(1, 1) = 6
Print Shared1.table(1, 1)
Sub Lasting()
  Static seen(1, 1) As Integer
  seen(1, 0) += 1
  Print seen(1, 0)
End Sub
Lasting
Lasting

' Without elements, though one dimension may have indices.
Dim none(,) As Integer
Dim wide(4, -1) As Integer
Print Str(none.Count) + Str(Ubound(none)) + Str(Ubound(none, 2)) + " " + Str(wide.Count) + Str(Ubound(wide)) + Str(Ubound(wide, 2))
For Each i As Integer In wide
  Print "never"
Next
Dim far(4611686018427387903, 4611686018427387903, -1) As Integer
Print Str(far.Count) + " " + Str(Ubound(far, 2))

' What is outside of an array, or is none.
Sub Try1(what As Integer)
  Dim list(1, 2) As Integer
  Dim nothing(,) As String = Nil
  Try
    Select Case what
    Case 1
      Print list(2, 0)
    Case 2
      list(1, -1) = 1
    Case 3
      list(0, 3) += 1
    Case 4
      Print list.Ubound(3)
    Case 5
      Print Ubound(list, 0)
    Case 6
      Print Ubound(row, 2)
    Case 7
      ReDim list(1, -2)
    Case 8
      ReDim list(9223372036854775806, 9223372036854775806)
    Case 9
      ReDim list(4294967295, 4294967295)
    Case 10
      ReDim list(1, 9223372036854775807)
    Case 11
      Print nothing(0, 0)
    Case 12
      nothing(0, 0) = "x"
    Case 13
      ReDim nothing(1, 1)
    Case 14
      Print nothing.Count
    Case 15
      Print far(1, 4611686018427387903, 0)
    Case 16
      Dim many(99999, 99999) As Integer
    Case 17
      Print none(0, 0)
    End Select
    Print "never"
  Catch e As RuntimeException
    Print Str(what) + " " + e.Message + " " + Str(list.Count)
  End Try
End Sub
For i As Integer = 1 To 17
  Try1(i)
Next
