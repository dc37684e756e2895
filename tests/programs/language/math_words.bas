' Mathematics, where the results are exact or few digits are shown.
Dim pi As Double = 4 * Atan(1)
Dim infinite As Double = 1 / 0
Dim nan As Double = 0 / 0
Print Format(pi, "0.000000") + " " + Format(Sin(pi / 6), "0.0000") + " " + Format(Cos(pi / 3), "0.0000") + " " + Format(Tan(pi / 4), "0.0000")
Print Str(Sin(0)) + " " + Str(Cos(0)) + " " + Str(Tan(0)) + " " + Str(Asin(0)) + " " + Str(Acos(1)) + " " + Str(Atan(0))
Print Format(Asin(1), "0.0000") + " " + Format(Acos(-1), "0.0000") + " " + Format(Atan2(1, -1), "0.0000") + " " + Str(Atan2(0, 1)) + " " + Format(Atan2(-1, 0), "0.0000")
Print Str(Asin(2)) + " " + Str(Acos(-2)) + " " + Str(Sin(infinite)) + " " + Format(Atan(infinite), "0.0000") + " " + Format(Atan2(0, -1), "0.0000")
Print Str(Sqrt(2.25)) + " " + Str(Sqrt(-1)) + " " + Str(Sqrt(infinite)) + " " + Str(Exp(0)) + " " + Format(Exp(1), "0.000000") + " " + Str(Exp(-infinite)) + " " + Str(Exp(1000))
Print Str(Log(1)) + " " + Format(Log(10), "0.000000") + " " + Str(Log(0)) + " " + Str(Log(-1)) + " " + Str(Log(infinite))
Print Str(Pow(2, 10)) + " " + Str(Pow(2, -1)) + " " + Str(Pow(0, 0)) + " " + Str(Pow(-8, 1 / 3)) + " " + Str(Pow(-2, 3)) + " " + Str(Pow(nan, 0)) + " " + Str(2.Pow(3))
Print Str(Floor(-1.5)) + " " + Str(Ceil(-1.5)) + " " + Str(Ceiling(1.2)) + " " + Str(Round(0.5)) + " " + Str(Round(-0.5)) + " " + Str(Round(2.4)) + " " + Str(Floor(infinite)) + " " + Str(Round(nan)) + " " + Str((1.7).Floor)
Print Str(Sign(-3)) + " " + Str(Sign(0.5)) + " " + Str(Sign(0)) + " " + Str(Sign(nan)) + " " + Str(Sign(-infinite)) + " " + Str((-2.5).Sign)

' Whole numbers stay what they are.
Dim big As Integer = 9007199254740993
Print Str(Abs(-big)) + " " + Str(Min(big, big + 1)) + " " + Str(Max(-big, -big - 1)) + " " + Str(Abs(-2.5)) + " " + Str((-4).Abs)
Dim least As Integer = -9223372036854775807 - 1
Print Str(Abs(least)) + " " + Str(VarType(Abs(-1))) + " " + Str(VarType(Abs(-1.0)))
Dim price As Currency = -19.99
Print Str(Abs(price)) + " " + Str(Min(price, Abs(price))) + " " + Str(Max(price, Abs(price)))
Dim word As UInt64 = 18446744073709551615
Print Str(Max(word, 1)) + " " + Str(Min(word, 5)) + " " + Str(Abs(word))
Dim small As Int8 = -5
Print Str(Abs(small)) + " " + Str(Min(small, 2.5)) + " " + Str(Max(1, 2.5))
Print Str(Min(nan, 1)) + " " + Str(Min(1, nan)) + " " + Str(Max(nan, 1)) + " " + Str(Max(1, nan)) + " " + Str(Min(-infinite, 1)) + " " + Str(Max(1, infinite))
Dim v As Variant = -7.5
Print Abs(v)

' Time goes on, random numbers keep to their bounds, and a seed gives the same ones again.
Dim started As Double = Microseconds
Dim startedTicks As Integer = Ticks
Print Str(System.Microseconds >= started) + " " + Str(System.Ticks >= startedTicks) + " " + Str(System.Ticks - startedTicks < 600)
Dim outside As Integer
For i As Integer = 1 To 1000
  Dim r As Double = Rnd
  If r < 0 Or r >= 1 Then outside += 1
  Dim n As Integer = System.Random.InRange(-2, 2)
  If n < -2 Or n > 2 Then outside += 1
  If System.Random.Number >= 1 Then outside += 1
  n = System.Random.LessThan(3)
  If n < 0 Or n > 2 Then outside += 1
Next
Print outside
Dim seeded As New Random
seeded.Seed = 42
Dim first As String
For i As Integer = 1 To 8
  first = first + Str(seeded.InRange(1, 6)) + " "
Next
Print first + Str(seeded.InRange(-1000000, 1000000)) + " " + Str(seeded.Number) + " " + Str(seeded.LessThan(100)) + " " + Str(seeded.Seed)
Print Format(seeded.Gaussian, "0.000") + " " + Format(seeded.Gaussian, "0.000")
Dim other As New Random
other.Seed = 42
Dim second As String
For i As Integer = 1 To 8
  second = second + Str(other.InRange(1, 6)) + " "
Next
Print first = second
Print Str(seeded.InRange(5, 5)) + " " + Str(seeded.InRange(least, 9223372036854775807) <> seeded.InRange(least, 9223372036854775807))
seeded.RandomizeSeed
other.RandomizeSeed
Print seeded.Seed = other.Seed
System.Random.Seed = 7
Dim again As Double = Rnd
System.Random.Seed = 7
Print Str(again = System.Random.Number) + " " + Str(System.Random.Seed)
Try
  Print seeded.InRange(2, 1)
Catch e As OutOfBoundsException
  Print e.Message
End Try
Try
  Print seeded.LessThan(0)
Catch e As OutOfBoundsException
  Print e.Message
End Try
