' Precedence, conversions, wrap-around, comparisons across kinds.
Print 2 + 3 * 4 ^ 2
Print -2 ^ 2
Print 2 ^ -1
Print 10 - 4 - 3
Print 100 / 10 / 2
Print 17 Mod 5 * 2
Print Not False And False
Print 1 + 1 = 2 Or 1 / 0 > 0
Print 5 And 3 Or 8
Print Not 5
Dim most As Int64 = 9223372036854775807
Print most + 1
Dim least As Int64 = -9223372036854775808
Print least \ -1
Print least Mod -1
Dim u As UInt64 = 0
u = u - 1
Print u
Print u > -1
Print -1 < u
Print u = -1
Dim i8 As Int8 = 127
i8 = i8 + 1
Print i8
Dim u16 As UInt16 = 70000
Print u16
Dim n As Integer = 2.9
Print n
n = -2.9
Print n
n = 1e300
Print n
Dim s As Single = 0.1
Print s
Print s + s
Print s * 1.0
Dim c As Currency = 0.0001
Print c * 3
Print c + 1
Print c / 2
Print c = 0.0001
Print "abc" = "ABC"
Print "abc" < "abd"
Print "a" + "b" > "aa"
Dim v As Variant = 5
Print v + 1
Print v * 2.5
v = "7"
Print v + 1
n = v
Print n
v = Nil
Print v Is Nil
Print 0.1 + 0.2
Print 1e21
Print 123456789012
Try
  n = 0
  Print 1 \ n
Catch e As DivisionByZeroException
  Print e.Message
End Try
Print (1 + 2) * 3
Print True Xor True
Dim lowest As Int64 = -9223372036854775808
Dim wrapped As Int64 = 18446744073709551615
Dim narrow As Int8 = -128
Print lowest
Print wrapped
Print narrow
