' Calls the functions with the same made-up arguments every time and prints results as their bits, so that two libraries
' can be compared: one word for the function, then its argument, then its result.
Dim bits As New MemoryBlock(8)

Function BitsOf(x As Double) As String
  bits.DoubleValue(0) = x
  Return Hex(bits.UInt64Value(0))
End Function

' Marsaglia, Xorshift RNGs, 2003
Dim state As UInt64 = 88172645463325252
Function Word() As UInt64
  state = state Xor LogicalShiftQTX(state, 13)
  state = state Xor LogicalShiftQTX(state, -7)
  state = state Xor LogicalShiftQTX(state, 17)
  Return state
End Function

' From -1 to 1
Function Unit() As Double
  Return Int64ToDoubleQTX(ArithmeticShiftQTX(Word(), -11)) / 4503599627370496.0 - 1.0
End Function

Function AnyDouble() As Double
  bits.UInt64Value(0) = Word()
  Return bits.DoubleValue(0)
End Function

Sub Mathematics(x As Double, y As Double)
  Dim a As String = BitsOf(x)
  Dim b As String = a + "," + BitsOf(y)
  Print "Cos " + a + " " + BitsOf(CosQTX(x))
  Print "CosH " + a + " " + BitsOf(CosHQTX(x))
  Print "Sin " + a + " " + BitsOf(SinQTX(x))
  Print "SinH " + a + " " + BitsOf(SinHQTX(x))
  Print "Tan " + a + " " + BitsOf(TanQTX(x))
  Print "TanH " + a + " " + BitsOf(TanHQTX(x))
  Print "ACos " + a + " " + BitsOf(ACosQTX(x))
  Print "ACosH " + a + " " + BitsOf(ACosHQTX(x))
  Print "ASin " + a + " " + BitsOf(ASinQTX(x))
  Print "ASinH " + a + " " + BitsOf(ASinHQTX(x))
  Print "ATan " + a + " " + BitsOf(ATanQTX(x))
  Print "ATanH " + a + " " + BitsOf(ATanHQTX(x))
  Print "Exp " + a + " " + BitsOf(ExpQTX(x))
  Print "Exp2 " + a + " " + BitsOf(Exp2QTX(x))
  Print "Log " + a + " " + BitsOf(LogQTX(x))
  Print "Log2 " + a + " " + BitsOf(Log2QTX(x))
  Print "Log10 " + a + " " + BitsOf(Log10QTX(x))
  If x > 0.0 And x < 1.0 Then Print "NormInv " + a + " " + BitsOf(NormInvQTX(x))
  Print "ATan2 " + b + " " + BitsOf(ATan2QTX(x, y))
  Print "Hypot " + b + " " + BitsOf(HypotQTX(x, y))
  Print "Pow " + b + " " + BitsOf(PowQTX(x, y))
  Print "Sqrt " + b + " " + BitsOf(SqrtQTX(x, y))
End Sub

' What the library computes by itself: every bit is the same everywhere.
Sub Own(x As Double, y As Double)
  Dim a As String = BitsOf(x)
  Dim exponent As Integer
  Dim fraction As Double = FRExpQTX(x, exponent)
  Print "=FRExp " + a + " " + BitsOf(fraction) + "," + Str(exponent)
  Print "=Floor " + a + " " + BitsOf(FloorQTX(x))
  Print "=Round " + a + " " + BitsOf(RoundQTX(x))
  Print "=RoundTo2 " + a + " " + BitsOf(RoundQTX(x, 2))
  Print "=IsNAN " + a + " " + Str(IsNANQTX(x))
  Print "=IsFinite " + a + " " + Str(IsFiniteQTX(x))
  Print "=IsInf " + a + " " + Str(IsInfQTX(x))
  Print "=DoubleToInt64 " + a + " " + Str(DoubleToInt64QTX(x))
  Print "=DoubleToUInt64 " + a + " " + Str(DoubleToUInt64QTX(x))
  Print "=Extended " + a + " " + BitsOf(ExtendedStrToDoubleQTX(DoubleToExtendedStrQTX(x)))
  Dim s As Single = x
  Dim h As UInt16 = ConvertToFloat16QTX(s)
  Print "=Float16 " + a + " " + Hex(h) + "," + BitsOf(ConvertFromFloat16QTX(h))
  Print "=Compare " + a + "," + BitsOf(y) + " " + Str(CompareNumbersQTX(x, y))
End Sub

Sub Words(v As UInt64, w As UInt64)
  Dim a As String = Hex(v) + "," + Hex(w)
  Dim n As Integer = LoWordQTX(w) Mod 70
  Print "=BitCount " + a + " " + Str(BitCountQTX(v))
  Print "=Shifts " + a + " " + Hex(ArithmeticShiftQTX(v, n - 35)) + "," + Hex(LogicalShiftQTX(v, n - 35))
  Print "=Rotate " + a + " " + Hex(BitwiseRotateQTX(v, n, n Mod 20, 5 + n Mod 30))
  Print "=Bits " + a + " " + Hex(BitClearQTX(v, w)) + "," + Hex(BitwiseDiffQTX(v, w)) + "," + Hex(BitwiseNOrQTX(v, w)) + "," + Hex(BitwiseNAndQTX(v, w))
  Print "=UInt64ToDouble " + a + " " + BitsOf(UInt64ToDoubleQTX(v))
  Dim i As New Int128QTX
  i.HighValue = v
  i.LowValue = w
  Dim u As New UInt128QTX
  u.HighValue = v
  u.LowValue = w
  Dim d As New Int128QTX(n - 35)
  Dim e As New UInt128QTX(n + 1)
  Print "=Int128 " + a + " " + i.StringValue + "," + (i * i).StringValue + "," + (i / d).StringValue + "," + (i Mod d).StringValue
  Print "=UInt128 " + a + " " + u.StringValue + "," + (u * u).StringValue + "," + (u / e).StringValue + "," + (u Mod e).StringValue
End Sub

Dim special() As Double = Array(0.0, -0.0, 1.0, -1.0, 0.5, 2.0, 1e-300, 5e-324, 1e300, 1.5, 2.5, -2.5, 0.1, 10.0, 100.0, 709.78, -745.1)
For Each x As Double In special
  For Each y As Double In special
    Mathematics(x, y)
    Own(x, y)
  Next
Next
For i As Integer = 1 To 400
  Mathematics(Unit(), Unit())
  Mathematics(Unit() * 20, Unit() * 20)
  Mathematics(AnyDouble(), AnyDouble())
  Own(Unit() * 100, Unit())
  Own(AnyDouble(), AnyDouble())
  Words(Word(), Word())
Next

' A spline and a queue.
Dim xs() As Double, ys() As Double
For i As Integer = 0 To 99
  xs.Append(i + Unit() / 3)
  ys.Append(Unit() * 10)
Next
Dim spline As New SplineQTX(xs, ys)
For i As Integer = 1 To 500
  Dim x As Double = Unit() * 55 + 50
  Print "=Spline " + BitsOf(x) + " " + BitsOf(spline.calc(x))
Next
