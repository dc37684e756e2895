' The functions that take text, with text in every encoding, and text that is none.
Function Outcome(text As String) As String
  Try
    Return Str(CurrencyValueQTX(text)) + " " + Str(IsValidCreditCardNumberQTX(text))
  Catch e As UnsupportedFormatException
    Return e.Message + " " + Str(IsValidCreditCardNumberQTX(text))
  End Try
End Function

Dim euro As String = Chr(8364)
For Each text As String In Array("18", "-1.5", "", "+", "-+7", "1" + euro, euro + "1", "1234567890123456789012", "922337203685478")
  Print "UTF8      " + Outcome(text)
  Print "ASCII     " + Outcome(ConvertEncoding(text, Encodings.ASCII))
  Print "MacRoman  " + Outcome(ConvertEncoding(text, Encodings.MacRoman))
  Print "Latin1    " + Outcome(ConvertEncoding(text, Encodings.ISOLatin1))
  Print "Windows   " + Outcome(ConvertEncoding(text, Encodings.WindowsLatin1))
  Print "UTF16     " + Outcome(ConvertEncoding(text, Encodings.UTF16))
  Print "UTF16LE   " + Outcome(ConvertEncoding(text, Encodings.UTF16LE))
  Print "UTF32BE   " + Outcome(ConvertEncoding(text, Encodings.UTF32BE))
  Print "no known  " + Outcome(DefineEncoding(text, Encodings.None))
Next

' A NUL ends an amount, but not a card number.
Print Outcome("18" + Chr(0) + "x")
' Bytes that mean nothing in UTF-8, with and without that encoding.
Dim broken As String = "1" + ChrB(255) + ChrB(192)
Print Len(Outcome(DefineEncoding(broken, Encodings.UTF8))) > 0
Print Len(Outcome(DefineEncoding(broken, Encodings.None))) > 0
' A megabyte.
Dim long As String = "1234567890"
While LenB(long) < 1000000
  long = long + long
Wend
Print Outcome(long)
