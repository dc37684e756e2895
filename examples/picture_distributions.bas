' draws: docs/distributions.svg
' output: varies
' takes: long
' Draws from the three distributions as a picture (SVG): bars for how many of
' them fell where, and the curve or dots where the distribution itself is. Each
' run draws other bars.
'
'   ./qtx run examples/picture_distributions.bas > distributions.svg

Const Draws = 10000
Const Pi = 3.141592653589793

Function Pixels(x As Double) As String
  Return Format(x, "0.0")
End Function
Sub Text(x As Double, y As Double, words As String)
  Print "<text x='" + Pixels(x) + "' y='" + Pixels(y) + "'>" + words + "</text>"
End Sub

' How many of the values fell into each of so many equal parts from low on.
Function Counts(values() As Double, low As Double, part As Double, parts As Integer) As Integer()
  Dim all() As Integer
  ReDim all(parts - 1)
  For Each value As Double In values
    Dim at As Integer = FloorQTX((value - low) / part)
    If at >= 0 And at < parts Then all(at) = all(at) + 1
  Next
  Return all
End Function

' Bars of 200 pixels together; a share of all draws is as high as the density says times the width of a part.
Sub Bars(left As Double, counted() As Integer, part As Double, tallest As Double)
  Dim width As Double = 200 / counted.Count
  For i As Integer = 0 To counted.LastIndex
    Dim height As Double = 200 * counted(i) / Draws / part / tallest
    Print "<rect class='drawn' x='" + Pixels(left + i * width) + "' y='" + Pixels(240 - height) + "' width='" + _
      Pixels(width - 1) + "' height='" + Pixels(height) + "'/>"
  Next
End Sub
Sub Axis(left As Double, name As String, first As String, middle As String, last As String, aside As Double = 0)
  Print "<line class='axis' x1='" + Pixels(left) + "' y1='240' x2='" + Pixels(left + 200) + "' y2='240'/>"
  Text(left + 100, 24, name)
  Text(left + aside, 258, first)
  Text(left + 100 + aside, 258, middle)
  Text(left + 200 + aside, 258, last)
End Sub
Sub Curve(points As String)
  Print "<polyline class='exact' points='" + points + "'/>"
End Sub

Dim normal() As Double
Dim waiting() As Double
Dim events() As Double
For i As Integer = 1 To Draws
  normal.Append RandomNormalDistributionQTX(100, 15)
  waiting.Append RandomExponentialDistributionQTX(0.5)
  events.Append RandomPoissonDistributionQTX(6)
Next

Print "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 690 270' font-family='sans-serif' font-size='13' text-anchor='middle'>"
Print "<title>10000 draws from each of the three distributions, and their densities</title>"
Print "<style>.paper{fill:#fff}text{fill:#222}.axis{stroke:#222}.drawn{fill:#a9c8ee}.exact{stroke:#c60;fill:none;stroke-width:2}"
Print ".dot{fill:#c60}"
Print "@media(prefers-color-scheme:dark){.paper{fill:#1e2029}text{fill:#ddd}.axis{stroke:#ddd}.drawn{fill:#34598c}"
Print ".exact{stroke:#fa5}.dot{fill:#fa5}}</style>"
Print "<rect class='paper' width='690' height='270'/>"

' --- Normal, from 50 to 150 --------------------------------------------------
Bars(20, Counts(normal, 50, 2.5, 40), 2.5, 0.03)
Dim points As String
For i As Integer = 0 To 100
  Dim z As Double = (i - 50) / 15
  Dim density As Double = ExpQTX(-z * z / 2) / 15 / (2 * Pi) ^ 0.5
  points = points + Pixels(20 + 2 * i) + "," + Pixels(240 - 200 * density / 0.03) + " "
Next
Curve(points)
Axis(20, "normal, 100 ± 15", "50", "100", "150")

' --- Exponential, from 0 to 10 -----------------------------------------------
Bars(245, Counts(waiting, 0, 0.25, 40), 0.25, 0.55)
points = ""
For i As Integer = 0 To 100
  points = points + Pixels(245 + 2 * i) + "," + Pixels(240 - 200 * 0.5 * ExpQTX(-0.05 * i) / 0.55) + " "
Next
Curve(points)
Axis(245, "exponential, rate 0.5", "0", "5", "10")

' --- Poisson, from 0 to 19 ---------------------------------------------------
Bars(470, Counts(events, 0, 1, 20), 1, 0.18)
For k As Integer = 0 To 19
  Dim probability As Double = ExpQTX(-6) * PowQTX(6, k) / FacQTX(k)
  Print "<circle class='dot' cx='" + Pixels(470 + 10 * k + 4.5) + "' cy='" + Pixels(240 - 200 * probability / 0.18) + _
    "' r='3'/>"
Next
Axis(470, "Poisson, mean 6", "0", "10", "20", 4.5)
Print "</svg>"
