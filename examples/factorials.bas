' Factorials in 128 bits: how far they go, and how to notice where they stop being right.
'
'   ./qtx run examples/factorials.bas

' --- All that fit ------------------------------------------------------------
' 33! has 37 digits. A Double would have been off from 23! on, and an Int64
' from 21! on.
Dim product As New Int128QTX(1)
For n As Integer = 1 To 33
  product = product * n
  Print Str(n) + "! = " + product.stringValue
Next

' --- The one that does not ---------------------------------------------------
' 34! is larger than 2^127. Arithmetic wraps around silently, so ask before
' multiplying: the largest number that may still be multiplied by n is the
' quotient of the largest of all by n.
Dim largest As New Int128QTX("170141183460469231731687303715884105727")

Function Fits(factor As Int128QTX, n As Int64) As Boolean
  Return factor <= largest / n
End Function

Print "33! may be multiplied by 34: " + Str(Fits(product, 34))
Dim wrapped As Int128QTX = product * 34
Print "multiplied all the same:     " + wrapped.stringValue

' The unsigned class reaches one further.
Dim unsigned As New UInt128QTX(product)
unsigned = unsigned * 34
Print "34! without a sign:          " + unsigned.stringValue

' --- Exact ratios ------------------------------------------------------------
' Binomial coefficients, multiplying and dividing in turn so that every step
' is a whole number: the ways to draw 26 cards out of 52.
Function Binomial(n As Int64, k As Int64) As Int128QTX
  Dim ways As New Int128QTX(1)
  For i As Int64 = 1 To k
    ways = ways * (n - k + i) / i
  Next
  Return ways
End Function

Print "26 out of 52 cards:          " + Binomial(52, 26).stringValue
Print "62 out of 124:               " + Binomial(124, 62).stringValue
