' Fibonacci numbers in 128 bits, without a sign: up to F(186), the last that fits.
'
'   ./qtx run examples/fibonacci128.bas

' --- One after the other -----------------------------------------------------
' Operators leave their operands alone and give a new object, so the variables
' are simply passed along.
Dim current As UInt128QTX = UInt128QTX.zero
Dim following As UInt128QTX = UInt128QTX.one
Dim index As Integer = 0
Do
  If index Mod 31 = 0 Then
    Print "F(" + Str(index) + ") = " + current.stringValue + "  (" + Str(current.BitWidth) + " bits)"
  End If
  Dim sum As UInt128QTX = current + following
  ' An unsigned sum that is below one of its terms has wrapped around.
  If sum < following Then Exit Do
  current = following
  following = sum
  index = index + 1
Loop
Print "F(" + Str(index + 1) + ") is the last that fits: " + following.stringValue

' --- Straight to one of them -------------------------------------------------
' By doubling: F(2k) = F(k) · (2 · F(k+1) − F(k)) and F(2k+1) = F(k)² + F(k+1)²,
' a bit of the index at a time. Modulo 2^128, so that any index will do.
Function Fibonacci(n As UInt64) As UInt128QTX
  Dim a As UInt128QTX = UInt128QTX.zero
  Dim b As UInt128QTX = UInt128QTX.one
  Dim bits As New UInt128QTX(n)
  For position As Int64 = bits.BitWidth - 1 DownTo 0
    Dim evenOne As UInt128QTX = a * (b * 2 - a)
    Dim oddOne As UInt128QTX = a * a + b * b
    Dim bit As UInt128QTX = bits.ShiftRight(position).BitwiseAnd(1)
    If bit.Equals(1) Then
      a = oddOne
      b = evenOne + oddOne
    Else
      a = evenOne
      b = oddOne
    End If
  Next
  Return a
End Function

Print "by doubling, F(186) = " + Fibonacci(186).stringValue
Print "the low 128 bits of F(1000000): " + Fibonacci(1000000).stringValue
