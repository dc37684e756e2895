' Money without binary fractions: the same sums in Double and in Currency.
'
'   ./qtx run examples/money.bas

' --- A thousand times ten cents ------------------------------------------------
Dim d As Double
Dim c As Currency
Dim dime As Currency = CurrencyValueQTX("0.10")
For i As Integer = 1 To 1000
  d = d + 0.1
  c = CurrencyAddQTX(c, dime)
Next
Print "1000 * 0.10"
Print "  Double    " + Str(d)
Print "  Currency  " + Str(c)

' --- An amount that a Double cannot hold ----------------------------------------
' 922 trillion and a few cents: a Double has no bits left for all of them.
Dim text As String = "922337203685477.5807"
Print "reading " + text
Print "  Double    " + Format(CDbl(text), "0.0000")
Print "  Currency  " + Str(CurrencyValueQTX(text))

' --- An invoice -------------------------------------------------------------------
' What a line costs is exact; the tax is rounded to cents once, at the end.
Dim lines() As String = Array("12;19.99", "3;0.35", "1;1249.00", "250;0.0125")
Dim total As Currency
Print "invoice"
For Each line As String In lines
  Dim at As Integer = InStr(line, ";")
  Dim count As Integer = Val(Left(line, at - 1))
  Dim price As Currency = CurrencyValueQTX(Mid(line, at + 1))
  Dim amount As Currency = CurrencyMulQTX(price, count)
  total = CurrencyAddQTX(total, amount)
  Print "  " + Str(count) + " * " + Str(price) + " = " + Str(amount)
Next

' To whole cents, halves away from zero: a division by 100 and a multiplication
' drop the third and the fourth decimal, and half a cent is added before.
Function InCents(amount As Currency) As Currency
  Dim half As Currency = CurrencyValueQTX("0.005")
  If amount < 0 Then half = CurrencyMulQTX(half, -1)
  Dim cents As Currency = CurrencyDivQTX(CurrencyAddQTX(amount, half), 100)
  Return CurrencyMulQTX(cents, 100)
End Function

Dim tax As Currency = InCents(CurrencyDivQTX(CurrencyMulQTX(total, 19), 100))
Print "  net   " + Str(total)
Print "  tax   " + Str(tax)
Print "  total " + Str(CurrencyAddQTX(total, tax))

' --- Sharing without losing a cent --------------------------------------------------
Dim sum As Currency = CurrencyValueQTX("100")
Dim rest As Currency = sum
Print "100 among three"
For i As Integer = 3 DownTo 1
  Dim share As Currency = InCents(CurrencyDivQTX(rest, i))
  rest = CurrencySubQTX(rest, share)
  Print "  " + Str(share)
Next
Print "  left: " + Str(rest)

' --- What people type ------------------------------------------------------------------
Print "typed"
For Each typed As String In Array("-17.5", "+3", ".5", "1,50", "a lot", "123456789012345678")
  Try
    Print "  " + typed + " is " + Str(CurrencyValueQTX(typed))
  Catch e As UnsupportedFormatException
    Print "  " + typed + ": " + e.Message
  End Try
Next
