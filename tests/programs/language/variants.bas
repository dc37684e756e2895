' Arithmetic and comparisons of variants, which go by what is inside.
Function Shown(v As Variant) As String
  Return Str(VarType(v)) + ":" + Str(v)
End Function
Dim two As Variant = 2
Dim seven As Variant = 7
Dim half As Variant = 0.5
Dim word As Variant = "7"
Dim nothing As Variant
Print Shown(seven + two) + " " + Shown(seven - two) + " " + Shown(seven * two)
Print Shown(seven / two) + " " + Shown(seven \ two) + " " + Shown(seven Mod two) + " " + Shown(two ^ seven)
Print Shown(seven + half) + " " + Shown(seven - half) + " " + Shown(seven * half) + " " + Shown(seven / half)
Print Shown(seven \ (half + 2.9)) + " " + Shown(7.9 Mod two) + " " + Shown(seven \ 2.9)
Print Shown(word + two) + " " + Shown(two + word) + " " + Shown(word - two) + " " + Shown("a" + word)
Print Shown(nothing + two) + " " + Shown(-seven) + " " + Shown(-half)
Try
  Print seven \ nothing
Catch e As DivisionByZeroException
  Print e.Message
End Try

' And, Or, Xor and Not take a variant for a Boolean.
Dim yes As Variant = True
Print Str(yes And True) + " " + Str(yes Or False) + " " + Str(yes Xor True) + " " + Str(Not yes)
If yes Then Print "yes"
While nothing
  Print "never"
Wend

Function Ordered(a As Variant, b As Variant) As String
  Dim s As String
  If a < b Then s = s + "<"
  If a <= b Then s = s + "≤"
  If a = b Then s = s + "="
  If a <> b Then s = s + "≠"
  If a >= b Then s = s + "≥"
  If a > b Then s = s + ">"
  Return s
End Function
Dim big As UInt64 = 18446744073709551615
Dim small As UInt64 = 1
Dim one As New Date
Dim other As New Date
Dim numbers() As Integer = Array(1, 2)
Print Ordered(1, 2) + " " + Ordered(two, two) + " " + Ordered(0.5, -1)
Print Ordered(big, -1) + " " + Ordered(-1, big) + " " + Ordered(small, 1) + " " + Ordered(1, big) + " " + Ordered(big, small)
Print Ordered("a", "B") + " " + Ordered(word, 7) + " " + Ordered(7, word) + " " + Ordered(Nil, "")
Print Ordered(Nil, 0) + " " + Ordered(0, Nil) + " " + Ordered(Nil, Nil) + " " + Ordered(one, Nil)
Print Ordered(one, other) + "|" + Ordered(one, one) + "|" + Ordered(numbers, one) + "|" + Ordered(one, 5) + "|" + Ordered(numbers, 1)
Print Ordered(0 / 0, 1)

' What is no plain value has none.
For Each v As Variant In Array(one, numbers, Nil)
  Try
    Dim n As Integer = v
    Print n
  Catch e As TypeMismatchException
    Print e.Message
  End Try
Next
Dim v As Variant = 5
Try
  Dim d As Date = v
Catch e As TypeMismatchException
  Print e.Message
End Try
v = one
Try
  Dim t As Thread = v
Catch e As TypeMismatchException
  Print e.Message
End Try
Dim d As Date = v
Print d Is one
v = numbers
Dim again() As Integer = v
Print again Is numbers
Try
  Dim wrong() As String = v
Catch e As TypeMismatchException
  Print e.Message
End Try
v = Nil
Dim none() As Integer = v
Print none Is Nil
Print v IsA Date
