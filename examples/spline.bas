' A curve through measured points: the pH of vinegar while lye is added drop by
' drop, as a table of values (CSV) and as a picture (SVG), beside a natural
' spline and the polynomial through the same points.
'
'   ./qtx run examples/spline.bas
'   ./qtx run examples/spline.bas | sed -n '/<svg/,/<\/svg>/p' > titration.svg

Dim volume() As Double = Array(0.0, 5.0, 10.0, 15.0, 20.0, 24.0, 25.0, 26.0, 30.0, 40.0)
Dim pH() As Double = Array(2.88, 4.16, 4.58, 4.93, 5.36, 6.14, 8.72, 11.29, 11.96, 12.36)
Const Last = 9

Dim curve As New SplineQTX(volume, pH)

' The one polynomial of degree 9 through all ten points, in Lagrange's form.
Function Polynomial(x As Double) As Double
  Dim sum As Double
  For i As Integer = 0 To Last
    Dim term As Double = pH(i)
    For j As Integer = 0 To Last
      If j <> i Then term = term * (x - volume(j)) / (volume(i) - volume(j))
    Next
    sum = sum + term
  Next
  Return sum
End Function

' The natural spline: pieces whose curvatures meet, and vanish at both ends. The
' second derivatives at the points solve a tridiagonal system.
Dim bend(Last) As Double
Sub Solve()
  Dim factor(Last) As Double
  Dim rest(Last) As Double
  For i As Integer = 1 To Last - 1
    Dim before As Double = volume(i) - volume(i - 1)
    Dim after As Double = volume(i + 1) - volume(i)
    Dim jump As Double = (pH(i + 1) - pH(i)) / after - (pH(i) - pH(i - 1)) / before
    Dim divisor As Double = 2 * (before + after) - before * factor(i - 1)
    factor(i) = after / divisor
    rest(i) = (6 * jump - before * rest(i - 1)) / divisor
  Next
  For i As Integer = Last - 1 DownTo 1
    bend(i) = rest(i) - factor(i) * bend(i + 1)
  Next
End Sub
Solve

Function Natural(x As Double) As Double
  Dim i As Integer = 1
  While i < Last And x > volume(i)
    i = i + 1
  Wend
  Dim width As Double = volume(i) - volume(i - 1)
  Dim left As Double = (volume(i) - x) / width
  Dim right As Double = 1 - left
  Return left * pH(i - 1) + right * pH(i) + width * width / 6 * _
    ((left * left * left - left) * bend(i - 1) + (right * right * right - right) * bend(i))
End Function

' --- The table ---------------------------------------------------------------
Print "ml,spline,natural,polynomial"
For i As Integer = 0 To 20
  Dim x As Double = i * 2
  Print Str(x) + "," + Format(curve.calc(x), "0.000") + "," + Format(Natural(x), "0.000") + "," + _
    Format(Polynomial(x), "0.000")
Next

' --- The picture -------------------------------------------------------------
' 15 units to a millilitre, 25 to a pH step.
Function Across(x As Double) As String
  Return Format(60 + 15 * x, "0.0")
End Function
Function Up(y As Double) As String
  Return Format(370 - 25 * y, "0.0")
End Function
Sub Text(x As String, y As String, anchor As String, words As String)
  Print "<text x='" + x + "' y='" + y + "' text-anchor='" + anchor + "'>" + words + "</text>"
End Sub
Sub Line(kind As String, x1 As String, y1 As String, x2 As String, y2 As String)
  Print "<line class='" + kind + "' x1='" + x1 + "' y1='" + y1 + "' x2='" + x2 + "' y2='" + y2 + "'/>"
End Sub

Print "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 690 430' font-family='sans-serif' font-size='13'>"
Print "<title>Titration of acetic acid: a constrained spline, a natural spline and a polynomial through ten points</title>"
Print "<style>.paper{fill:#fff}text{fill:#222}.grid{stroke:#ddd}.axis{stroke:#222}.measured{fill:#222}"
Print ".own{stroke:#06c;stroke-width:2.5}.natural{stroke:#393;stroke-dasharray:9 4}.polynomial{stroke:#c60;stroke-dasharray:3 4}"
Print "@media(prefers-color-scheme:dark){.paper{fill:#1e2029}text{fill:#ddd}.grid{stroke:#3a3d4a}.axis{stroke:#ddd}"
Print ".measured{fill:#ddd}.own{stroke:#6af}.natural{stroke:#7c7}.polynomial{stroke:#fa5}}</style>"
Print "<rect class='paper' width='690' height='430'/>"
Print "<clipPath id='plot'><rect x='60' y='20' width='600' height='350'/></clipPath>"

For i As Integer = 0 To 14 Step 2
  Line("grid", "60", Up(i), "660", Up(i))
  Text("50", Up(i - 0.2), "end", Str(i))
Next
For i As Integer = 0 To 40 Step 5
  Line("grid", Across(i), "20", Across(i), "370")
  Text(Across(i), "388", "middle", Str(i))
Next
Line("axis", "60", "370", "660", "370")
Line("axis", "60", "20", "60", "370")
Text("360", "412", "middle", "lye added, ml")
Text("70", "38", "start", "pH")

Dim polynomialPath As String
Dim naturalPath As String
Dim splinePath As String
For i As Integer = 0 To 400
  Dim x As Double = i / 10
  polynomialPath = polynomialPath + Across(x) + "," + Up(Polynomial(x)) + " "
  naturalPath = naturalPath + Across(x) + "," + Up(Natural(x)) + " "
  splinePath = splinePath + Across(x) + "," + Up(curve.calc(x)) + " "
Next
Print "<g clip-path='url(#plot)' fill='none'>"
Print "<polyline class='polynomial' points='" + polynomialPath + "'/>"
Print "<polyline class='natural' points='" + naturalPath + "'/>"
Print "<polyline class='own' points='" + splinePath + "'/>"
Print "</g>"
For i As Integer = 0 To Last
  Print "<circle cx='" + Across(volume(i)) + "' cy='" + Up(pH(i)) + "' r='4.5' class='measured'/>"
Next

Line("own", "480", "258", "510", "258")
Text("518", "262", "start", "SplineQTX")
Line("natural", "480", "280", "510", "280")
Text("518", "284", "start", "natural spline")
Line("polynomial", "480", "302", "510", "302")
Text("518", "306", "start", "polynomial")
Print "<circle cx='495' cy='324' r='4.5' class='measured'/>"
Text("518", "328", "start", "measured")
Print "</svg>"
