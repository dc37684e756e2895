' Numbers by patterns: Format, Str and ToString with a pattern.
Sub Show(pattern As String)
  Dim line As String = pattern + " ->"
  For Each value As Double In Array(0, 1, -1, 0.5, -0.04, 1234.567, -1234567.891)
    line = line + " [" + Format(value, pattern) + "]"
  Next
  Print line
End Sub
Show("")
Show("0")
Show("#")
Show("#.#")
Show("00.00")
Show("#,##0.00")
Show(",0")
Show(".00")
Show("+0.0")
Show("-0.0")
Show("$#,##0.00")
Show("$-0.0 net")
Show("0.00;(0.00)")
Show("0.0;-0.0;nought")
Show("0;;none")
Show("0;\-0\-;-")
Show("+")
Show(";0.0")
Show("0%")
Show("%0.0")
Show("0.00e")
Show("0.0E+00")
Show("#\#0 \;\")
Show("€ 0 é")
Show("none")
Show("a. 0, b")
Print Format(1e300, "#,##0").Left(9) + " " + Str(Format(1e308, "0").Length) + " " + Format(0 / 0, "0.0") + " " + Format(1 / 0, "0;0;0") + " " + Format(-1 / 0, "0")
Print Format(1e308, "0%") + " " + Format(-1e308, "0%") + " " + Format(5, "0000000000000000000000,")
Print Str(3.14159, "0.00") + " " + ToString(2, "000") + " " + (0.25).ToString("0%") + " " + Str(CDbl("1e3"), "#,##0") + " " + (7).ToString + " " + Str(1.5)

' Halves go away from 0.
Print Format(0.5, "0") + " " + Format(2.5, "0") + " " + Format(-1157.625, "#,##0.00") + " " + Format(0.125, "0.0#") + " " + Format(1.4999, "0")
Print Format(4503599627370495.5, "0") + " " + Format(4503599627370497.0, "0") + " " + Format(0.375, "0.00%")

' Every digit of whole numbers and Currency, which a Double has not.
Dim most As Currency = 922337203685477.5807
Print Format(most, "#,##0.00") + " " + Format(-most, "0.000000") + " " + Format(most, "0.0%") + " " + Format(most, "")
Dim half As Currency = 0.005
Print Format(half, "0.00") + " " + Format(-half, "0.0") + " " + Format(half, "0%") + " " + Format(half, "#.###") + " " + Format(half, "0.0E")
Dim least As Integer = -9223372036854775808
Print Format(least, "#,##0;(#,##0.0)") + " " + Format(9007199254740993, "0%") + " " + Format(0, "#%;;zero")
Dim large As UInt64 = 18446744073709551615
Print Format(large, "#,##0") + " " + Str(large, "0.0") + " " + large.ToString("+0")

' What a Variant holds, and what stands for a whole number, counts with all its digits.
Dim held As Variant = 9223372036854775807
Print Format(held, "#,##0")
held = -9223372036854775807 - 1
Print Format(held, "#,##0")
Dim widest As UInt64 = &hFFFFFFFFFFFFFFFF
held = widest
Print Format(held, "#,##0") + " " + Str(held, "0")
Dim exact As Currency = 123456789012.3456
held = exact
Print Format(held, "#,##0.0000") + " " + Format(held, "0.000") + " " + Format(held, "0%")
Dim huge As Int128QTX = "-170141183460469231731687303715884105728"
held = huge
Print Format(held, "#,##0.00")
Print Format(huge, "0;(#,##0)")
Dim largest As UInt128QTX = "340282366920938463463374607431768211455"
Print Format(largest, "+#,##0")
Print Str(largest, "0%")
held = 0.125
Print Format(held, "0.00") + " " + Format(held, "")
held = "12.5"
Print Format(held, "0.00")
exact = 999999.9999
Print Format(exact, "0.000") + " " + Format(-exact, "#,##0")
held = New Dictionary
Try
  Print Format(held, "0")
Catch e As TypeMismatchException
  Print e.Message
End Try
