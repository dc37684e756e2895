' What ordinary programs do now and then.
Function Numbers() As Integer()
  Return Array(1, 2, 3)
End Function
Class Settings
  Private Shared sole As Settings
  Private values As New Dictionary
  Shared Function Instance() As Settings
    If sole Is Nil Then sole = New Settings
    Return sole
  End Function
  Function Operator_Subscript(key As String) As Variant
    Return values.Lookup(key, "none")
  End Function
  Sub Operator_Subscript(key As String, Assigns value As Variant)
    values.Value(key) = value
  End Sub
End Class
Module Data
  Function Words() As String()
    Return Array("one", "two")
  End Function
End Module

' What a Function without parameters gives may be indexed at once.
Print Str(Numbers(1)) + Str(Numbers()(2)) + Str(Numbers.Count)
Settings.Instance("size") = 12
Print Settings.Instance("size") + " " + Settings.Instance()("colour")
Print Data.Words(1) + " " + Words(0)

Print Str(BitAnd(15, 7, 12)) + " " + Str(Bitwise.BitOr(1, 2, 4, 8)) + " " + Str(BitXor(1, 3, 5)) + " " + Str(BitAnd(7, 3))
Print Str(Min(4, 2.5, 3)) + " " + Str(Max(1, 7, 3, 5)) + " " + Str(Min(3, 2, 1))
Print Join(Array("a", "b"))
Print Join(Data.Words)
For Each c As String In "né".Characters
  Print c
Next
Print Hex(AscB("né".MidB(3))) + Hex(AscB(RightBytes("né", 1))) + " " + LeftB("abc", 2) + " " + "abc".MiddleBytes(1, 1) + " [" + "a".MidB(9) + RightB("a", -1) + LeftB("", 3) + "] " + RightB("abc", 9)
