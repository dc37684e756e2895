' prints: docs/quantile.svg
' The inverse normal distribution as a picture (SVG): the number below which a
' normal distribution lies with probability p, and what the two ends give.
'
'   ./qtx run examples/picture_quantile.bas > quantile.svg

Function Across(p As Double) As String
  Return Format(60 + 600 * p, "0.0")
End Function
Function Up(z As Double) As String
  Return Format(190 - 50 * z, "0.0")
End Function
Sub Text(x As String, y As String, anchor As String, words As String)
  Print "<text x='" + x + "' y='" + y + "' text-anchor='" + anchor + "'>" + words + "</text>"
End Sub
Sub Line(kind As String, x1 As String, y1 As String, x2 As String, y2 As String)
  Print "<line class='" + kind + "' x1='" + x1 + "' y1='" + y1 + "' x2='" + x2 + "' y2='" + y2 + "'/>"
End Sub
Sub Dot(p As Double, z As Double)
  Print "<circle class='dot' cx='" + Across(p) + "' cy='" + Up(z) + "' r='4.5'/>"
End Sub

Print "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 690 400' font-family='sans-serif' font-size='13'>"
Print "<title>NormInvQTX(p) for p from 0 to 1</title>"
Print "<style>.paper{fill:#fff}text{fill:#222}.grid{stroke:#ddd}.axis{stroke:#222}.hint{stroke:#888;stroke-dasharray:4 4}"
Print ".curve{stroke:#06c;fill:none;stroke-width:2.5}.dot{fill:#c60}"
Print "@media(prefers-color-scheme:dark){.paper{fill:#1e2029}text{fill:#ddd}.grid{stroke:#3a3d4a}.axis{stroke:#ddd}"
Print ".curve{stroke:#6af}.dot{fill:#fa5}}</style>"
Print "<rect class='paper' width='690' height='400'/>"
For z As Integer = -3 To 3
  Line("grid", "60", Up(z), "660", Up(z))
  Text("50", Up(z - 0.1), "end", Str(z))
Next
For tenth As Integer = 0 To 10 Step 2
  Line("grid", Across(tenth / 10), "20", Across(tenth / 10), "360")
  Text(Across(tenth / 10), "378", "middle", Str(tenth / 10))
Next
Line("axis", "60", Up(0), "660", Up(0))
Text("360", "395", "middle", "p")

Dim points As String
For i As Integer = 1 To 999
  points = points + Across(i / 1000) + "," + Up(NormInvQTX(i / 1000)) + " "
Next
Print "<polyline class='curve' points='" + points + "'/>"

' Half of all lies below the middle, 95 % between two quantiles that everyone knows.
For Each p As Double In Array(0.025, 0.5, 0.975)
  Dim z As Double = NormInvQTX(p)
  Line("hint", Across(p), Up(0), Across(p), Up(z))
  Dot(p, z)
Next
Text(Across(0.05), Up(NormInvQTX(0.025)), "start", "p = 0.025: " + Format(NormInvQTX(0.025), "0.0000"))
Text(Across(0.95), Up(NormInvQTX(0.975)), "end", "p = 0.975: " + Format(NormInvQTX(0.975), "0.0000"))
For p As Integer = 0 To 1
  Dot(p, NormInvQTX(p))
Next
Text(Across(0.035), Up(-0.55), "start", "p = 0: " + Format(NormInvQTX(0), "0.0000"))
Text(Across(0.965), Up(0.4), "end", "p = 1: " + Format(NormInvQTX(1), "0.0000"))
Print "</svg>"
