' Arrays: their members, their borders, and arrays that are not there.
Dim a() As Integer
a.Append 4
a.Add(2)
a.Insert(0, 9)
a.AddAt(3, 1)
Print Str(a.Count) + " " + Str(a.Ubound) + " " + Str(Ubound(a)) + " " + Str(a.LastIndex)
Print Str(a(0)) + Str(a(1)) + Str(a(2)) + Str(a(3))
a.RemoveAt(0)
a.Remove 0
Print Str(a.Pop) + Str(a.Pop) + " " + Str(a.Count)
ReDim a(2)
a(2) = 5
ReDim a(3)
Print Str(a(0)) + Str(a(2)) + Str(a(3))
ReDim a(-1)
Print a.Count
a.RemoveAll

' Of every type of elements.
Dim half As Single = 0.5
Dim bytes(1) As UInt8
bytes(0) = 257
bytes(1) = 2
bytes(1) += 255
Print Str(bytes(0)) + " " + Str(bytes(1))
Dim singles(1) As Single
singles(1) = 0.1
singles(1) += 1
Print singles(1)
Dim flags(1) As Boolean
flags(1) = Not flags(0)
Print Str(flags(0)) + Str(flags(1))
Dim words() As String = Array("a", "b", "c")
words.Insert(1, "x")
words.Remove(0)
Print Join(words, "") + words.Pop + Join(words, ",")
ReDim words(0)
Print Join(words, ",")
Dim mixed() As Variant = Array(1, "two", 3.5, Nil)
For Each v As Variant In mixed
  Print Str(VarType(v)) + " " + Str(v)
Next
Dim fractions() As Double = Array(1, 2.5, half)
Print fractions(0) + fractions(1) + fractions(2)
Dim objects() As Int128QTX
objects.Append(5)
objects(0) = 6
objects.Append(Nil)
Print Str(objects(0)) + " " + Str(objects(1) Is Nil)
Dim same() As Integer = a
same.Append(3)
Print Str(a.Count) + " " + Str(same Is a)
Function Made(n As Integer) As Integer()
  Dim list() As Integer
  For i As Integer = 1 To n
    list.Append(i * i)
  Next
  Return list
End Function
Print Made(3)(2)
Sub Fill(list() As Integer, ByRef other() As Integer)
  list.Append(8)
  other = list
End Sub
Dim filled() As Integer
Fill(a, filled)
Print filled(1)

' For Each assigns like any other assignment; the array may change meanwhile.
Dim number As Double
For Each number In Array(1, 2, 3)
  If number = 2 Then Continue For
  Print number
Next
For Each b As Integer In Array(5, 6, 7)
  If b = 6 Then Exit
  Print b
Next b
Dim inside As Variant = mixed
For Each v As Variant In inside
  If v Is Nil Then Exit For
  Print v
Next
For Each w As String In words
  words.Append("z")
  If words.Count > 4 Then Exit For
Next
Print words.Count
Dim nothing() As Integer = Nil
For Each i As Integer In nothing
  Print "never"
Next

' What is outside of an array, or is none.
Sub Try1(what As Integer)
  Dim list() As Integer = Array(1, 2)
  Dim none() As Integer = Nil
  Try
    Select Case what
    Case 1
      Print list(2)
    Case 2
      list(-1) = 1
    Case 3
      list.Insert(3, 1)
    Case 4
      list.Remove(2)
    Case 5
      ReDim list(-2)
    Case 6
      Print none.Count
    Case 7
      none(0) = 1
    Case 8
      list.RemoveAll
      Print list.Pop
    Case 9
      ReDim list(9223372036854775807)
    Case 10
      Dim many(9223372036854775806) As Integer
    Case 11
      none.Append(1)
    Case 12
      ReDim none(2)
    End Select
    Print "never"
  Catch e As RuntimeException
    Print e.Message
  End Try
End Sub
For i As Integer = 1 To 12
  Try1(i)
Next
