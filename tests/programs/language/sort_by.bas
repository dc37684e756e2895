' Elements of any type in the order of the program's own.
Class Person
  Property Name As String
  Property Age As Integer
  Sub Constructor(name As String, age As Integer)
    Self.Name = name
    Self.Age = age
  End Sub
End Class
Function ByAge(one As Person, other As Person) As Integer
  Return one.Age - other.Age
End Function
Function NamesOf(people() As Person) As String
  Dim text As String
  For Each p As Person In people
    text += p.Name
  Next
  Return text
End Function

Dim people() As Person = Array(New Person("a", 3), New Person("b", 1), New Person("c", 2), New Person("d", 1), New Person("e", 3))
people.Sort(AddressOf ByAge)
Print NamesOf(people)

Class Order
  Dim direction As Integer = -1
  Function Compare(x As Double, y As Double) As Integer
    Return direction * Sign(x - y)
  End Function
End Class
Dim falling As New Order
Dim numbers() As Double = Array(1.5, 3, 2, -7, 0)
numbers.Sort(AddressOf falling.Compare)
For Each n As Double In numbers
  Print n
Next
Dim none() As Double
none.Sort(AddressOf falling.Compare)
Print none.Count

Delegate Function Comparing(a As String, b As String) As Integer
Function ByLength(a As String, b As String) As Integer
  Return a.Length - b.Length
End Function
Dim how As Comparing = AddressOf ByLength
Dim words() As String = Array("ccc", "a", "bb", "d")
words.Sort(how)
Print Join(words, " ")

' Whatever it answers, nothing is lost.
Dim whole() As Integer
For i As Integer = 1 To 100
  whole.Append(i)
Next
Function Always(a As Integer, b As Integer) As Integer
  Return 1
End Function
whole.Sort(AddressOf Always)
Dim sum As Integer
For Each n As Integer In whole
  sum += n
Next
Print sum

Function Fails(a As Integer, b As Integer) As Integer
  Raise New UnsupportedOperationException("no")
End Function
Function Grows(a As Integer, b As Integer) As Integer
  whole.Append(0)
  Return a - b
End Function
Try
  whole.Sort(AddressOf Fails)
Catch e As UnsupportedOperationException
  Print e.Message
End Try
Try
  whole.Sort(AddressOf Grows)
Catch e As UnsupportedOperationException
  Print e.Message
End Try
Print whole(0)

Dim nobody As Comparing
Try
  words.Sort(nobody)
Catch e As NilObjectException
  Print e.Message
End Try
