' options: --leaks --keeps Int128QTX --keeps UInt128QTX
' Nil as every operand: operators give a copy, comparisons and equality raise, constructors leave the value alone.
Dim none As Int128QTX
Dim a As New Int128QTX(1000)
Dim results() As Int128QTX
results.Append(a + none)
results.Append(a - none)
results.Append(a * none)
results.Append(a / none)
results.Append(a Mod none)
results.Append(a.BitwiseAnd(none))
results.Append(a.BitwiseOr(none))
results.Append(a.BitwiseXOr(none))
results.Append(a.ShiftLeft(none))
results.Append(a.ShiftRight(none))
For Each r As Int128QTX In results
  Print r.stringValue + " " + Str(r Is a)
Next

Dim noneU As UInt128QTX
Dim u As New UInt128QTX(2000)
Dim resultsU() As UInt128QTX
resultsU.Append(u + noneU)
resultsU.Append(u - noneU)
resultsU.Append(u * noneU)
resultsU.Append(u / noneU)
resultsU.Append(u Mod noneU)
resultsU.Append(u.BitwiseAnd(noneU))
resultsU.Append(u.BitwiseOr(noneU))
resultsU.Append(u.BitwiseXOr(noneU))
resultsU.Append(u.ShiftLeft(noneU))
resultsU.Append(u.ShiftRight(noneU))
For Each r As UInt128QTX In resultsU
  Print r.stringValue + " " + Str(r Is u)
Next

' A copy of a small number is the shared one.
Dim seven As New Int128QTX(7)
Print (seven + none) Is (seven - none)

Sub Check(which As Integer)
  Dim s As New Int128QTX(1)
  Dim t As New UInt128QTX(1)
  Dim n As Int128QTX
  Dim nU As UInt128QTX
  Try
    Select Case which
    Case 1
      Print s < n
    Case 2
      Print s = nU
    Case 3
      Print s.Equals(n)
    Case 4
      Print s.Equals(nU)
    Case 5
      Print t < n
    Case 6
      Print t = nU
    Case 7
      Print t.Equals(n)
    Case 8
      Print t.Equals(nU)
    End Select
  Catch e As NilObjectException
    Print e.Message
  End Try
End Sub
For i As Integer = 1 To 8
  Check(i)
Next

Dim b As New Int128QTX(none)
Print b
Dim c As New Int128QTX(noneU)
Print c
Dim v As New UInt128QTX(none)
Print v
Dim w As New UInt128QTX(noneU)
Print w
