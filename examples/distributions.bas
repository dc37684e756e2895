' takes: long
' output: varies
' Draws from the three distributions: a histogram of each as text, then the
' numbers themselves as CSV.
'
'   ./qtx run examples/distributions.bas
'   ./qtx run examples/distributions.bas | sed -n '/^normal,/,$p' > draws.csv

Const Draws = 20000
Const Widest = 50

' Bars for the counts of `bins` equal parts between low and high.
Sub Histogram(title As String, values() As Double, low As Double, high As Double, bins As Integer)
  Dim counts() As Integer
  ReDim counts(bins - 1)
  Dim outside As Integer
  Dim highest As Integer = 1
  For Each value As Double In values
    Dim bin As Integer = FloorQTX((value - low) / (high - low) * bins)
    If bin < 0 Or bin >= bins Then
      outside = outside + 1
      Continue
    End If
    counts(bin) = counts(bin) + 1
    highest = Max(highest, counts(bin))
  Next
  Print title
  For bin As Integer = 0 To bins - 1
    Dim bar As String
    For i As Integer = 1 To RoundQTX(Widest * counts(bin) / highest)
      bar = bar + "#"
    Next
    Dim label As String = Format(low + bin * (high - low) / bins, "0.00")
    While Len(label) < 7
      label = " " + label
    Wend
    Print label + " " + bar
  Next
  Print Str(outside) + " of " + Str(values.Ubound + 1) + " lie outside."
  Print ""
End Sub

Dim normal() As Double
Dim waiting() As Double
Dim events() As Double
For i As Integer = 1 To Draws
  normal.Append RandomNormalDistributionQTX(100, 15)
  waiting.Append RandomExponentialDistributionQTX(0.5)
  events.Append RandomPoissonDistributionQTX(6)
Next

Histogram("Normal, mean 100, standard deviation 15", normal, 40, 160, 24)
Histogram("Exponential, rate 0.5", waiting, 0, 10, 20)
Histogram("Poisson, mean 6", events, 0, 18, 18)

' How many of the normal draws lie below the quantiles.
Print "share below the quantile"
For Each p As Double In Array(0.01, 0.25, 0.5, 0.75, 0.99)
  Dim quantile As Double = NormInvQTX(p, 100, 15)
  Dim below As Integer
  For Each value As Double In normal
    If value < quantile Then below = below + 1
  Next
  Print Format(p, "0.00") + " " + Format(quantile, "0.00") + " " + Format(below / Draws, "0.000")
Next
Print ""

Print "normal,exponential,poisson"
For i As Integer = 0 To Draws - 1
  Print Str(normal(i)) + "," + Str(waiting(i)) + "," + Str(events(i))
Next
