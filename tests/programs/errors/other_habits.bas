' exit: 1
' Words and signs of other languages.
Dim i As Integer = 7;
Print i.ToStr
Print "abc".Lenght
Print "abc".Substring(1)
Print "abc".Upper
Print Int(4.5)
Print CInt("4")
Print UCase("abc")
Print UBund(Array(1))
Print String(4)
Print Integer("4")
Print Math.Sqrt(4)
Print LBound(Array(1))
For Each x In Array("a")
Next
Dim d As New Dictionary
For Each k As Variant In d
Next
For Each c As String In "abc"
Next
End Sub
