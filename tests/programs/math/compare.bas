' CompareNumbersQTX over every kind of value that a Variant can hold, in both orders.
Dim names() As String
Dim values() As Variant
Sub Have(name As String, value As Variant)
  names.Append name
  values.Append value
End Sub

Dim small As Int32 = -7
Dim unsignedSmall As UInt32 = 4294967295
Dim big As Int64 = 9223372036854775807
Dim bigUnsigned As UInt64 = &h8000000000000000
Dim one As UInt64 = 1
Dim aSingle As Single = 2.5
Dim money As Currency = CurrencyValueQTX("2.5")
Dim numbers(2) As Integer
Have("Nil", Nil)
Have("Int32 -7", small)
Have("Integer 3", 3)
Have("UInt32 4294967295", unsignedSmall)
Have("Int64 2^63-1", big)
Have("UInt64 1", one)
Have("UInt64 2^63", bigUnsigned)
Have("True", True)
Have("Single 2.5", aSingle)
Have("Double 2.5", 2.5)
Have("Double 2^63", 9223372036854775808.0)
Have("Double NaN", LogQTX(-1))
Have("Currency 2.5", money)
Have("String 10", "10")
Have("String abc", "abc")
Have("Date", New Date)
Have("DateTime", New DateTime)
Have("object", New Int128QTX(3))
Have("array", numbers)

For i As Integer = 0 To values.Ubound
  Print names(i)
  For j As Integer = 0 To values.Ubound
    Dim result As String
    Try
      Dim n As Integer = CompareNumbersQTX(values(i), values(j))
      If n > 0 Then result = ">" Else result = "="
      If n < 0 Then result = "<"
    Catch e As RuntimeException
      result = "refused: " + e.Message
    End Try
    Print "  " + result + " " + names(j)
  Next
Next
