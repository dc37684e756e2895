' What is a number in a text: decimal digits, and nothing that only some systems read.
For Each text As String In Array("nan", "inf", "-Infinity", "0x10", "0x1p3", "1e3", " 12 ", "-.5", "+3.", ".", "-", "", "1e", "1e+", "1e-2x", "1.2.3", "12" + Chr(0))
  Dim v As Variant = text
  Print "[" + text.Replace(Chr(0), "0") + "] " + Str(Val(text)) + " " + Str(text.ToDouble) + " " + Str(v.DoubleValue) + " " + Str(IsNumeric(text))
Next
Print Val("&h10")
