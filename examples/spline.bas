' A curve through measured points: the pH of vinegar while lye is added drop by
' drop, as a table of values (CSV) and as a picture (SVG), beside the polynomial
' through the same points.
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

' --- The table ---------------------------------------------------------------
Print "ml,spline,polynomial"
For i As Integer = 0 To 20
  Dim x As Double = i * 2
  Print Str(x) + "," + Format(curve.calc(x), "0.000") + "," + Format(Polynomial(x), "0.000")
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
Sub Line(x1 As String, y1 As String, x2 As String, y2 As String, colour As String)
  Print "<line x1='" + x1 + "' y1='" + y1 + "' x2='" + x2 + "' y2='" + y2 + "' stroke='" + colour + "'/>"
End Sub

Print "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 690 430' font-family='sans-serif' font-size='13'>"
Print "<title>Titration of acetic acid: a constrained spline and a polynomial through ten points</title>"
Print "<rect width='690' height='430' fill='white'/>"
Print "<clipPath id='plot'><rect x='60' y='20' width='600' height='350'/></clipPath>"

For i As Integer = 0 To 14 Step 2
  Line("60", Up(i), "660", Up(i), "#ddd")
  Text("50", Up(i - 0.2), "end", Str(i))
Next
For i As Integer = 0 To 40 Step 5
  Line(Across(i), "20", Across(i), "370", "#ddd")
  Text(Across(i), "388", "middle", Str(i))
Next
Line("60", "370", "660", "370", "black")
Line("60", "20", "60", "370", "black")
Text("360", "412", "middle", "lye added, ml")
Text("70", "38", "start", "pH")

Dim polynomialPath As String
Dim splinePath As String
For i As Integer = 0 To 400
  Dim x As Double = i / 10
  polynomialPath = polynomialPath + Across(x) + "," + Up(Polynomial(x)) + " "
  splinePath = splinePath + Across(x) + "," + Up(curve.calc(x)) + " "
Next
Print "<g clip-path='url(#plot)' fill='none'>"
Print "<polyline stroke='#c60' stroke-dasharray='5 4' points='" + polynomialPath + "'/>"
Print "<polyline stroke='#06c' stroke-width='2.5' points='" + splinePath + "'/>"
Print "</g>"
For i As Integer = 0 To Last
  Print "<circle cx='" + Across(volume(i)) + "' cy='" + Up(pH(i)) + "' r='4.5' fill='#222'/>"
Next

Line("480", "280", "510", "280", "#06c")
Text("518", "284", "start", "SplineQTX")
Line("480", "302", "510", "302", "#c60")
Text("518", "306", "start", "polynomial")
Print "<circle cx='495' cy='324' r='4.5' fill='#222'/>"
Text("518", "328", "start", "measured")
Print "</svg>"
