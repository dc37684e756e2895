' What a program declares goes first; where it does not take the arguments, the language's function of that
' name does.
Class Worker
  Inherits Thread
  Property Parts() As String
  Sub Run()
    Parts.Append("one")
    Parts.Append("two")
    Print Join(Parts, "-")
    Print Join(Array(Join(Parts, "+"), "three"), "-")
  End Sub
  Sub Finish()
    Join
    Join()
  End Sub
End Class

Class Fraction
  Property Numerator, Denominator As Integer
  Sub Constructor(n As Integer, d As Integer)
    Numerator = n
    Denominator = d
  End Sub
  Function Abs() As Fraction
    Return New Fraction(Abs(Numerator), Abs(Denominator))
  End Function
  Function Str() As String
    Return Str(Numerator) + "/" + Str(Denominator)
  End Function
  Function Left(count As Integer) As String
    Return Left(Str, count)
  End Function
  Function Values() As Integer()
    Return Array(Numerator, Denominator)
  End Function
  Function Second() As Integer
    Return Values(1)
  End Function
End Class

Function Max(values() As Integer) As Integer
  Dim largest As Integer = values(0)
  For Each one As Integer In values
    largest = Max(largest, one)
  Next
  Return largest
End Function

Function Double(x As Integer) As Integer
  Return 2 * x
End Function

Class Log
  Property Lines() As String
End Class

Dim w As New Worker
w.Start
w.Finish
Dim f As New Fraction(-3, 4)
Print f.Abs.Str
Print f.Left(2) + " " + Str(f.Second)
Print Max(Array(3, 7, 5))
Print Max(3, 7)
Print Double(21)
Dim journal As New Log
Dim any As Object = journal
Print Log(any) Is journal
Print Log(1.0)
