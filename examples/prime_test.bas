' Is a 64-bit number a prime? The test by Miller and Rabin, with products of 128 bits.
'
'   ./qtx run examples/prime_test.bas

' a · b modulo m. The product of two 64-bit numbers fits 128 bits, whatever
' they are; the remainder fits 64 again.
Function MultiplyModulo(a As UInt64, b As UInt64, m As UInt64) As UInt64
  Dim product As New UInt128QTX(a)
  Return (product * b) Mod m
End Function

Function PowerModulo(base As UInt64, exponent As UInt64, m As UInt64) As UInt64
  Dim result As UInt64 = 1
  While exponent > 0
    If exponent Mod 2 = 1 Then result = MultiplyModulo(result, base, m)
    base = MultiplyModulo(base, base, m)
    exponent = exponent \ 2
  Wend
  Return result
End Function

' These twelve bases leave no doubt for any number of 64 bits (Sorenson and
' Webster, "Strong pseudoprimes to twelve prime bases", 2017).
Function IsPrime(n As UInt64) As Boolean
  If n < 2 Then Return False
  Dim bases() As Integer = Array(2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37)
  For Each p As Integer In bases
    If n Mod p = 0 Then Return n = p
  Next

  ' n − 1 as an odd number times a power of two.
  Dim odd As UInt64 = n - 1
  Dim doublings As Integer = 0
  While odd Mod 2 = 0
    odd = odd \ 2
    doublings = doublings + 1
  Wend

  For Each witness As Integer In bases
    Dim x As UInt64 = PowerModulo(witness, odd, n)
    If x = 1 Or x = n - 1 Then Continue For
    Dim passed As Boolean = False
    For i As Integer = 2 To doublings
      x = MultiplyModulo(x, x, n)
      If x = n - 1 Then
        passed = True
        Exit For
      End If
    Next
    If Not passed Then Return False
  Next
  Return True
End Function

Sub Show(n As UInt64)
  If IsPrime(n) Then
    Print Str(n) + " is a prime"
  Else
    Print Str(n) + " is not"
  End If
End Sub

Show(561)                   ' fools the test by Fermat
Show(3825123056546413051)   ' fools nine of the bases
Show(2305843009213693951)   ' 2^61 - 1
Show(18446744073709551615)  ' 2^64 - 1

Print "The last ten primes below 2^64:"
Dim candidate As UInt64 = 18446744073709551615
Dim found As Integer = 0
While found < 10
  If IsPrime(candidate) Then
    found = found + 1
    Print "  " + Str(candidate)
  End If
  candidate = candidate - 2
Wend
