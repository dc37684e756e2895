' prints: docs/int128_range.svg
' How far integers reach, as a picture (SVG) with a logarithmic axis: the largest
' number of each type, and the largest factorials that fit them.
'
'   ./qtx run examples/picture_int128.bas > int128_range.svg

Function Across(power As Double) As String
  Return Format(130 + 13 * power, "0.0")
End Function
Sub Text(x As String, y As Integer, anchor As String, words As String)
  Print "<text x='" + x + "' y='" + Str(y) + "' text-anchor='" + anchor + "'>" + words + "</text>"
End Sub

Print "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 690 330' font-family='sans-serif' font-size='13'>"
Print "<title>The largest number of each type of integer, by powers of ten</title>"
Print "<style>.paper{fill:#fff}text{fill:#222}.grid{stroke:#ddd}.host{fill:#bbb}.own{fill:#06c}.mark{stroke:#c60;stroke-width:2}"
Print "@media(prefers-color-scheme:dark){.paper{fill:#1e2029}text{fill:#ddd}.grid{stroke:#3a3d4a}.host{fill:#5a5e6e}"
Print ".own{fill:#6af}.mark{stroke:#fa5}}</style>"
Print "<rect class='paper' width='690' height='330'/>"
For power As Integer = 0 To 40 Step 5
  Print "<line class='grid' x1='" + Across(power) + "' y1='20' x2='" + Across(power) + "' y2='290'/>"
  Text(Across(power), 308, "middle", If(power = 0, "1", "10^" + Str(power)))
Next

Dim y As Integer = 28
Sub Bar(kind As String, name As String, largest As UInt128QTX)
  Dim power As Double = Log10QTX(largest.doubleValue)
  Text("120", y + 15, "end", name)
  Print "<rect class='" + kind + "' x='" + Across(0) + "' y='" + Str(y) + "' width='" + Format(13 * power, "0.0") + _
    "' height='20'/>"
  y = y + 30
End Sub
Sub Mark(name As String, value As UInt128QTX, below As Integer)
  Dim x As String = Across(Log10QTX(value.doubleValue))
  Print "<line class='mark' x1='" + x + "' y1='" + Str(y) + "' x2='" + x + "' y2='" + Str(y + 12 + below) + "'/>"
  Text(x, y + 26 + below, "middle", name)
End Sub

Dim one As UInt128QTX = UInt128QTX.one
Bar("host", "Int32", one.ShiftLeft(31).Dec)
Bar("host", "UInt32", one.ShiftLeft(32).Dec)
Bar("host", "Int64", one.ShiftLeft(63).Dec)
Bar("host", "UInt64", one.ShiftLeft(64).Dec)
Bar("own", "Int128QTX", one.ShiftLeft(127).Dec)
Bar("own", "UInt128QTX", UInt128QTX.zero.Dec)

' Factorials, each as long as the next still fits.
Dim limits() As UInt128QTX
limits.Append(one.ShiftLeft(63).Dec)
limits.Append(one.ShiftLeft(127).Dec)
limits.Append(UInt128QTX.zero.Dec)
For i As Integer = 0 To 2
  Dim factorial As New UInt128QTX(one)
  Dim n As UInt64 = 1
  While factorial <= limits(i) / (n + 1)
    n = n + 1
    factorial = factorial * n
  Wend
  Mark(Str(n) + "!", factorial, If(i = 1, 24, 0))
Next
Print "</svg>"
