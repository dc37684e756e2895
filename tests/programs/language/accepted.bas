' What is written otherwise elsewhere, and means the same.
Dim d() As Double = Array(0, 1, 2)
Print Str(d(2) / 4)
Dim v() As Variant = Array(1, 2)
Print VarType(v(0))
Dim curve As New SplineQTX(Array(0, 1, 2), Array(0, 1, 4))
Print curve.calc(1)
If d(0) = 0 Then
  Print "joined end"
EndIf
Sub S()
  Print "sub"
EndSub
S
Print 1 + _ // one comment
  2 + _ ' another
  3
Var w As String = "Var"
Print w
Print 1 +　2  ' with blanks of print
For i As Integer = 1 To 2
  For j As Integer = 1 To 1
    Print Str(i) + Str(j)
  Next j
Next i
