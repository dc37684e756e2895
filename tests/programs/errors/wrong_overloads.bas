' exit: 1
Sub Show(n As Strng)
End Sub
Sub Show(n As Integer)
End Sub
Show("x")
Show(New Dictionary)
Class C
  Sub Go(a As Integer)
  End Sub
  Sub Go(a As Foo)
  End Sub
End Class
Dim c As New C
c.Go("x")

' What a wrong operator or extension would have done is not said either.
Class Money
  Function Operator_Add(other As Mony) As Money
    Return Self
  End Function
  Function Operator_Compare(other As Mony) As Integer
    Return 0
  End Function
  Sub Operator_Convert(n As Intger)
  End Sub
End Class
Function Backwards(Extends s As Strng) As String
  Return s
End Function
Dim m As Money = 5
m = m + m
If m < m Then Print "text".Backwards
For Each n As Numbr In New Dictionary
  Print n
Next
