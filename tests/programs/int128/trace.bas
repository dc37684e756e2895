' options: --trace --leaks --keeps Int128QTX --keeps UInt128QTX
' The trace of every member of both classes, values included; the silent members are silent.
Dim a As New Int128QTX(-100)
Dim b As New Int128QTX("300")
Dim u As New UInt128QTX("  400")
Dim m As UInt64 = 18446744073709551615
Dim v As New UInt128QTX(m)
Dim i As Int64 = -1
Dim w As New UInt128QTX(i)
Dim c As New Int128QTX(b)
Dim d As New Int128QTX(u)
Dim x As New UInt128QTX(u)
Dim y As New UInt128QTX(b)
Dim silent As New Int128QTX
Dim memory As New MemoryBlock(16)
Dim fromMemory As New Int128QTX(memory, 8)

Print "Constants"
Dim o As Object
o = Int128QTX.zero
o = Int128QTX.zero
o = UInt128QTX.two
Print Int128QTX.supported

Print "Properties"
Dim p As Ptr = c.Data
c.LowValue = m
c.HighValue = -2
x.HighValue = m
x.LowValue = 5
Print x.LowValue
Print c.HighValue
c.stringValue = "12"
Print c.stringValue
Print x.stringValue
o = b.Abs
Print b.Sign
Print b.PopCount
Print b.CountLeftZeros
Print b.CountRightZeros
Print b.BitWidth
Print b.doubleValue

Print "Conversions"
a = 50
a = " 60 é"
i = a
Dim s As String = a
m = 7
x = m
x = "70"
m = x
s = x

Print "Methods"
o = b.Sqrt
o = b.Pow(3)
b.Inc
b.Dec
o = b.Inc
o = b.Dec
o = b.BitwiseAnd(b)
o = b.BitwiseAnd(-1)
o = b.BitwiseOr(b)
o = b.BitwiseOr(1000)
o = b.BitwiseXOr(a)
o = b.BitwiseXOr(1000)
o = b.ShiftLeft(b)
o = b.ShiftLeft(1)
o = b.ShiftRight(Int128QTX.two)
o = b.ShiftRight(1)
Print b.Equals(300)
Print b.Equals(a)
Print b.Equals(u)

Print "Operators"
o = b + a
o = b + 1
o = b - a
o = b - 1
o = 1000 - b
o = b * a
o = b * 2
o = 2 * b
o = b / Int128QTX.two
o = b / 2
o = 30000 / b
o = b Mod (a * 10)
o = (b + 1) Mod 290
o = 299 Mod b
o = -b
Print b < u
Print b < a
Print b < 301

Print "Unsigned"
u = u * u
o = u.Sqrt
o = u.Pow(1)
u.Inc
u.Dec
o = u.Inc
o = u.Dec
m = 1000
o = u.BitwiseAnd(u)
o = u.BitwiseAnd(m * m)
o = u.BitwiseOr(u)
o = u.BitwiseOr(m)
o = u.BitwiseXOr(w)
o = u.BitwiseXOr(m)
o = u.ShiftLeft(UInt128QTX.two)
o = u.ShiftLeft(m)
o = u.ShiftLeft(i)
o = u.ShiftRight(UInt128QTX.two)
o = u.ShiftRight(m - 999)
i = 1
o = u.ShiftRight(i)
Print u.Equals(m)
Print u.Equals(w)
Print u.Equals(b)
o = u + w
o = u + m
o = u - w
o = u - m
o = m - u
o = u * w
o = u * m
o = m * u
o = u / UInt128QTX.two
o = u / m
o = m * m / u
o = w Mod u
o = u Mod (m - 100)
o = m Mod u
o = -u
Print u < b
Print u < w
Print u < m
Print u.PopCount
Print u.CountLeftZeros
Print u.CountRightZeros
Print u.BitWidth
Print u.doubleValue
