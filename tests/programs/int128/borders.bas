' options: --leaks --keeps Int128QTX --keeps UInt128QTX
' Results at the borders: of the shared small numbers, of 64 bits, and at both ends.
Dim top As New Int128QTX("170141183460469231731687303715884105727")
Dim bottom As Int128QTX = top + 1
Dim fourteen As New Int128QTX(14)
Print fourteen.Inc Is fourteen.Inc
Print (fourteen + 2) Is (fourteen + 2)
Print (fourteen - 15) Is (fourteen - 15)
Print bottom - 1 = top
Print -bottom = bottom
Print bottom.Abs = bottom
Print bottom / -1
Print bottom Mod -1
Print bottom / bottom
Print top * top
Print top / bottom
Print bottom / top
Print bottom Mod top
Dim word As New Int128QTX("18446744073709551615")
Print word + 1
Print word * word
Dim half As New Int128QTX(4294967295)
Print (half * half).Sqrt = half
Print (word * 4) / word
Print top.Sqrt
Print top.BitwiseAnd(-1) = top
Print top.BitwiseXOr(-1) = bottom
Print bottom.ShiftRight(127)
Print bottom.ShiftRight(128) = bottom
Print Int128QTX.one.ShiftLeft(-1) = bottom
Print (-Int128QTX.one).ShiftRight(200)
top.Inc
Print top = bottom
top.Dec
Print top

Dim all As UInt128QTX = UInt128QTX.zero - UInt128QTX.one
Print all
Print all + UInt128QTX.one
Print (all + UInt128QTX.one) Is UInt128QTX.zero
Print all.Sqrt
Print all / all
Print all Mod all
Print all * all
Print all.ShiftRight(64)
Print all.doubleValue
Dim zero As New UInt128QTX
zero.Dec
Print zero = all
Try
  Print -all
Catch e As OutOfBoundsException
  Print e.Message
End Try
Print -(all / UInt128QTX.two)
