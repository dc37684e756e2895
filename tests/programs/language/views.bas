' Values as those of another type.
Enum Level
  Low
  High = 10
End Enum
Print Integer(3.9) + Integer(Level.High)
Print Level(0) = Level.Low
Print CType(7, Double) / 2
Dim n As Integer = 300
Dim v As Variant = "12"
Print Str(UInt8(n)) + " " + Str(Integer(v)) + " " + Str(Currency(0.5)) + " " + String(v)
Class C
  ReadOnly Property Half As Double
    Get
      Return 0.5
    End Get
  End Property
End Class
Print (New C).Half
Print Str(BitAnd(12, 10)) + " " + Str(Bitwise.BitOr(12, 10)) + " " + Str(BitXor(12, 10)) + " " + Hex(Bitwise.OnesComplement(0))
Print Str(Bitwise.ShiftLeft(1, 63)) + " " + Str(Bitwise.ShiftLeft(1, 64)) + " " + Str(Bitwise.ShiftRight(8, 2)) + " " + Str(Bitwise.ShiftLeft(8, -2)) + " " + Str(Bitwise.ShiftRight(1, -9223372036854775807))
