' options: --leaks --keeps Int128QTX --keeps UInt128QTX
' Text that is odd, long, or in other encodings.
Sub Read(text As String)
  Dim a As New Int128QTX(text)
  Dim b As New Int128QTX(99)
  b = text
  Dim c As New Int128QTX(99)
  c.stringValue = text
  Dim u As New UInt128QTX(text)
  If a <> b Or a <> c Then Print "the three ways differ"
  Print "[" + text + "] " + a.stringValue + " " + u.stringValue
End Sub

Read("")
Read("   ")
Read("0")
Read("-0")
Read("+-5")
Read("--5")
Read("-")
Read("1_000")
Read("1,000")
Read("&hFF")
Read("1e3")
Read("é5")
Read("5é")
Read(" 5 6")
Read("00000000000000000000000000000000000000000000000000000000000012")
Read("170141183460469231731687303715884105727")
Read("170141183460469231731687303715884105728")
Read("-170141183460469231731687303715884105728")
Read("-170141183460469231731687303715884105729")
Read("340282366920938463463374607431768211455")
Read("340282366920938463463374607431768211456")
Read("9999999999999999999999999999999999999999")
Read(Chr(9) + Chr(10) + "7")

' There and back, for every number of digits.
Dim power As New UInt128QTX(1)
Dim wrong As Integer = 0
For digits As Integer = 1 To 39
  For Each number As UInt128QTX In Array(power, power - UInt128QTX.one, power + UInt128QTX.one)
    Dim again As New UInt128QTX(number.stringValue)
    If Not again.Equals(number) Then wrong = wrong + 1
  Next
  If power.stringValue.Length <> digits Then wrong = wrong + 1
  power = power * 10
Next
Print wrong

' A megabyte of digits is read modulo 2^128, a megabyte of blanks is skipped.
Dim long As String = "1234567890"
While long.Length < 1000000
  long = long + long
Wend
Dim big As New UInt128QTX(long)
Print big
Dim blanks As String = "          "
While blanks.Length < 1000000
  blanks = blanks + blanks
Wend
big = blanks + "12"
Print big

' The encoding of the text does not matter.
For Each code As Integer In Array(Encodings.UTF8, Encodings.UTF16, Encodings.UTF32BE, Encodings.ISOLatin1)
  Read(ConvertEncoding("-123é", code))
Next
