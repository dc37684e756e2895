' What a Variant can be asked.
Sub Show(v As Variant)
  Print Str(v.Type) + " " + Str(v.IsNull) + " " + Str(v.IsNumeric) + " " + Str(v.IsArray) + " " + Str(v.ArrayElementType) + " [" + v.StringValue + "] " + Str(v.IntegerValue) + " " + Str(v.Int64Value) + " " + Str(v.DoubleValue) + " " + Str(v.BooleanValue) + " " + Str(v.CurrencyValue) + " " + Str(v.SingleValue) + " " + Str(v.Int32Value) + " " + Str(v.UInt32Value) + " " + Str(v.UInt64Value)
End Sub
Dim small As Int16 = -3
Dim price As Currency = 1.25
Show(Nil)
Show(42)
Show(small)
Show(2.75)
Show(price)
Show(True)
Show("12.5 apples")
Show("12.5 ")
Show("")
Show("é")
Show(18446744073709551615)
Dim x As New CriticalSection
Dim v As Variant = x
Print Str(v.Type = Variant.TypeObject) + " " + Str(v.ObjectValue Is x) + " " + Str(v.IsNumeric) + " " + Str(v.IsNull)
For i As Integer = 1 To 4
  Try
    If i = 1 Then Print v.DoubleValue
    If i = 2 Then Print v.StringValue
    If i = 3 Then
      v = Array("a", "b")
      Print Str(v.Type = Variant.TypeArray + Variant.TypeString) + " " + Str(v.IsArray) + " " + Str(v.ArrayElementType = Variant.TypeString) + " " + Str(v.IsNumeric)
      Print v.IntegerValue
    End If
    If i = 4 Then
      v = 7
      Print v.ObjectValue Is Nil
    End If
  Catch e As TypeMismatchException
    Print e.Message
  End Try
Next
v = Nil
Print Str(v.ObjectValue Is Nil) + " " + Str(v.Type = Variant.TypeNil)
Print Str(Variant.TypeInt32) + " " + Str(Variant.TypeInt64) + " " + Str(Variant.TypeSingle) + " " + Str(Variant.TypeDouble) + " " + Str(Variant.TypeCurrency) + " " + Str(Variant.TypeDate) + " " + Str(Variant.TypeDateTime) + " " + Str(Variant.TypeBoolean) + " " + Str(Variant.TypePtr)
Print Str(IsNumeric("1e3")) + " " + Str("x1".IsNumeric) + " " + Str((5).IsNumeric) + " " + Str(IsNumeric(True))
