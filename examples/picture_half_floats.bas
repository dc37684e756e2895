' prints: docs/half_floats.svg
' What half floats can hold, as a picture (SVG): on the left the numbers between
' 1 and 1.008 and what is left of them, on the right how far apart half floats
' lie, from the smallest to the largest.
'
'   ./qtx run examples/picture_half_floats.bas > half_floats.svg

Function Pixels(x As Double) As String
  Return Format(x, "0.0")
End Function
Sub Text(x As Double, y As Double, anchor As String, words As String)
  Print "<text x='" + Pixels(x) + "' y='" + Pixels(y) + "' text-anchor='" + anchor + "'>" + words + "</text>"
End Sub
Sub Line(kind As String, x1 As Double, y1 As Double, x2 As Double, y2 As Double)
  Print "<line class='" + kind + "' x1='" + Pixels(x1) + "' y1='" + Pixels(y1) + "' x2='" + Pixels(x2) + _
    "' y2='" + Pixels(y2) + "'/>"
End Sub

Print "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 690 350' font-family='sans-serif' font-size='13'>"
Print "<title>Half floats: numbers are cut off toward zero, and lie the farther apart the larger they are</title>"
Print "<style>.paper{fill:#fff}text{fill:#222}.grid{stroke:#ddd}.hint{stroke:#888;stroke-dasharray:4 4}"
Print ".curve{stroke:#06c;fill:none;stroke-width:2.5}.dot{fill:#06c}"
Print "@media(prefers-color-scheme:dark){.paper{fill:#1e2029}text{fill:#ddd}.grid{stroke:#3a3d4a}"
Print ".curve{stroke:#6af}.dot{fill:#6af}}</style>"
Print "<rect class='paper' width='690' height='350'/>"

' --- On the left: from 1 on, in units of 2^-10 -------------------------------
Const Steps = 8
Text(180, 18, "middle", "numbers from 1 on, and what is left of them")
For i As Integer = 0 To Steps
  Line("grid", 50, 300 - i * 33, 314, 300 - i * 33)
  Line("grid", 50 + i * 33, 36, 50 + i * 33, 300)
  Text(50 + i * 33, 318, "middle", Str(i))
  Text(42, 304 - i * 33, "end", Str(i))
Next
Text(180, 338, "middle", "(number − 1) · 1024")
Line("hint", 50, 300, 314, 36)
For i As Integer = 0 To Steps - 1
  ' Where a stair begins and ends is asked of the library, not assumed.
  Dim start As Double = 1 + i / 1024
  Dim almost As Double = start + 1023 / 1024 / 1024
  Dim first As Double = (ConvertFromFloat16QTX(ConvertToFloat16QTX(start)) - 1) * 1024
  Dim last As Double = (ConvertFromFloat16QTX(ConvertToFloat16QTX(almost)) - 1) * 1024
  Line("curve", 50 + i * 33, 300 - first * 33, 50 + (i + 1) * 33, 300 - last * 33)
  Print "<circle class='dot' cx='" + Pixels(50 + i * 33) + "' cy='" + Pixels(300 - first * 33) + "' r='3.5'/>"
Next

' --- On the right: both axes by powers of two --------------------------------
Function Across(power As Double) As Double
  Return 420 + (power + 25) * 6
End Function
Function Up(power As Double) As Double
  Return 300 - (power + 25) * 8
End Function
Text(540, 18, "middle", "the distance to the next half float")
For power As Integer = -24 To 16 Step 8
  Line("grid", Across(power), 36, Across(power), 300)
  Text(Across(power), 318, "middle", "2^" + Str(power))
Next
For power As Integer = -24 To 4 Step 4
  Line("grid", Across(-25), Up(power), Across(16), Up(power))
  Text(Across(-25) - 8, Up(power) + 4, "end", "2^" + Str(power))
Next
Dim points As String
' Bits count up from the smallest half float to the largest, 0x7BFF.
For bits As Integer = 1 To &h7BFE
  If bits > 1 And bits Mod 1024 <> 0 And bits Mod 1024 <> 1023 Then Continue
  Dim number As Double = ConvertFromFloat16QTX(bits)
  Dim distance As Double = ConvertFromFloat16QTX(bits + 1) - number
  points = points + Pixels(Across(Log2QTX(number))) + "," + Pixels(Up(Log2QTX(distance))) + " "
Next
Print "<polyline class='curve' points='" + points + "'/>"
Text(540, 338, "middle", "the number")
Print "</svg>"
