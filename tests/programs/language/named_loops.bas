' Exit and Continue that name the variable of a For which is not the innermost one.
Dim found As String
For i As Integer = 1 To 5
  For j As Integer = 1 To 5
    For Each k As Integer In Array(1, 2, 3)
      Do
        While True
          Select Case i * j * k
          Case 12
            found = Str(i) + Str(j) + Str(k)
            Exit For i
          Case Is > 8
            Continue For i
          Case 4
            Continue For J
          Case Else
            Exit While
          End Select
        Wend
        Exit Do
      Loop
    Next k
  Next j
Next i
Print "found " + found

' What stands in Finally runs on the way.
For Each a As Integer In Array(1, 2, 3)
  For b As Integer = 1 To 3
    Try
      If b = 2 Then Continue For a
      If a = 3 Then Exit For a
      Print Str(a) + "/" + Str(b)
    Catch e As RuntimeException
      Print "never"
    Finally
      Print "left " + Str(a) + Str(b)
    End Try
  Next
Next

' Finally may leave another loop than was to be left.
Dim log As String
For a As Integer = 1 To 3
  For b As Integer = 1 To 3
    For c As Integer = 1 To 3
      Try
        Exit For a
      Finally
        If a < 3 Then Continue For b
      End Try
    Next
  Next
  log = log + Str(a)
Next
Print log

' Of two with the same variable the inner one is meant; a counter may be declared elsewhere, or be a Double.
Dim n As Integer
Dim x As Double
For n = 1 To 2
  For x = 0 To 1 Step 0.5
    For n = n To 2
      If x = 0.5 Then Exit For x
      Exit For n
    Next
    Print Str(n) + " " + Str(x)
  Next
Next
Print n

Function Place(wanted As Integer) As Integer
  For i As Integer = 0 To 9
    For j As Integer = 0 To 9
      If i * 10 + j = wanted Then Return i
      If j > 5 Then Continue For i
    Next
  Next
  Return -1
End Function
Print Str(Place(45)) + Str(Place(48))
