' MemoryBlocks: every type of value, both orders of bytes, and what is outside.
Dim m As New MemoryBlock(16)
m.Byte(0) = 255
m.Int8Value(1) = -2
m.UInt8Value(2) = 254
m.Int16Value(4) = -3
m.UInt16Value(6) = 65533
m.Int32Value(8) = -4
m.UInt32Value(12) = 4294967292
Print Str(m.Int8Value(0)) + " " + Str(m.Byte(1)) + " " + Str(m.Int8Value(2)) + " " + Str(m.UInt16Value(4)) + " " + Str(m.Int16Value(6)) + " " + Str(m.UInt32Value(8)) + " " + Str(m.Int32Value(12))
m.Int64Value(0) = -5
m.UInt64Value(8) = 18446744073709551611
Print Str(m.UInt64Value(0)) + " " + Str(m.Int64Value(8))
m.SingleValue(0) = 0.1
m.DoubleValue(8) = -0.1
Print Str(m.SingleValue(0)) + " " + Str(m.DoubleValue(8))
m.CurrencyValue(0) = 1.5
m.BooleanValue(8) = True
m.BooleanValue(9) = False
Print Str(m.CurrencyValue(0)) + " " + Str(m.BooleanValue(8)) + Str(m.BooleanValue(9)) + " " + Str(m.Int64Value(0))
m.SingleValue(4) += 2
Print m.SingleValue(4)

Print m.LittleEndian
m.LittleEndian = False
m.UInt32Value(0) = 1
Print Str(m.Byte(0)) + Str(m.Byte(3)) + " " + Str(m.UInt32Value(0)) + " " + Str(m.UInt16Value(2))
m.LittleEndian = True
Print Hex(m.UInt32Value(0))

' As text, and as what a Ptr points to.
m.StringValue(0, 4) = "ab"
Print Str(LenB(m.StringValue(0, 3))) + " " + m.StringValue(0, 2) + " " + Str(m.Byte(2))
m.StringValue(0, 3) = "longer"
Print m.StringValue(0, 3) + " " + Str(m.Byte(3))
m = "text"
Dim s As String = m
Print Str(m.Size) + " " + s
m = ""
Print m.Size
m.Size = 8
Print m.UInt64Value(0)
Dim p As Ptr = m
p.Integer(0) = -1
Print Str(p.UInt8(7)) + " " + Str(p.Int16(2)) + " " + Str(p.UInt32(4)) + " " + Str(p.Int32(0))
p.Single(4) = 0.5
p.Boolean(0) = False
p.UInt16(2) = 7
Print Str(p.Single(4)) + " " + Str(p.Boolean(0)) + Str(p.Boolean(1)) + " " + Str(p.UInt16(2)) + " " + Str(p.Int8(1))
p.Currency(0) = 0.25
Print m.CurrencyValue(0)
p.Ptr(0) = p
Print Str(p.Ptr(0) = p) + Str(p <> p.Ptr(0)) + Str(p = Nil) + Str(p > Nil)
p.Double(0) = 2.5
p.Double(0) *= 2
Print m.DoubleValue(0)
m.Size = 0
Dim none As Ptr
Print none = Nil
none = Nil

Sub Attempt(what As Integer)
  Dim b As New MemoryBlock(4)
  Dim p As Ptr
  Try
    Select Case what
    Case 1
      Print b.Byte(4)
    Case 2
      b.Int32Value(1) = 0
    Case 3
      Print b.Byte(-1)
    Case 4
      b.Size = -1
    Case 5
      Dim negative As New MemoryBlock(-5)
    Case 6
      b.Size = 1000000000000
    Case 7
      Print b.StringValue(2, 3)
    Case 8
      Print b.StringValue(0, -1)
    Case 9
      b.StringValue(5, 0) = ""
    Case 10
      Print p.Byte(0)
    Case 11
      p.Byte(0) = 1
    Case 12
      b = Nil
      Print b.Size
    Case 13
      b = Nil
      b.Byte(0) = 1
    Case 14
      b = Nil
      b.LittleEndian = True
    End Select
    Print "never"
  Catch e As RuntimeException
    Print Str(what) + " " + e.Message
  End Try
End Sub
For i As Integer = 1 To 14
  Attempt(i)
Next
