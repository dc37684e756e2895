' Exit, Continue and Return out of loops in loops, and counters wherever they are.
Dim log As String
Dim counter As Integer
Dim limit As Double

Sub Note(s As String)
  log = log + s + " "
End Sub
Sub Show()
  Print log
  log = ""
End Sub

For counter = 1 To 10
  If counter = 2 Then Continue
  If counter > 4 Then Exit
  Note Str(counter)
Next counter
Note "then " + Str(counter)
For limit = 1 To 0 Step -0.5
  If limit = 0.5 Then Continue For
  Note Str(limit)
Next
For limit = 1 DownTo 0 Step 0.25
  If limit < 0.5 Then Exit For
  Note Str(limit)
Next
Show

' The innermost loop is meant unless a kind is named.
For i As Integer = 1 To 3
  While True
    Do
      If i = 2 Then Continue For
      If i = 3 Then Exit For
      Exit While
    Loop
  Wend
  Note "after " + Str(i)
Next
Dim n As Integer
Do
  n += 1
  While n < 3
    n += 1
    If n = 2 Then Continue While
    Continue Do
  End While
  For Each word As String In Array("a", "b")
    If n = 4 Then Continue Do
    If n = 9 Then Exit Do
    Note word + Str(n)
  Next
  n += 1
Loop Until n > 20
Note Str(n)
n = 0
While n < 9
  n += 1
  If n = 4 Then Continue
  If n = 6 Then Exit
  Note Str(n)
Wend
Do
  n -= 1
  If n = 4 Then Continue
  If n < 2 Then Exit
  Note Str(n)
Loop
Show

' A counter may be changed by the body, go by reference, be unsigned, or stand in a block.
Sub Count(ByRef i As Integer, ByRef u As UInt64, ByRef d As Double)
  For i = 1 To 9
    If i = 3 Then i = 7
    Note Str(i)
  Next
  For u = 18446744073709551613 To 18446744073709551615
    Note Str(u)
  Next
  For u = 4 DownTo 0 Step 2
    Note Str(u)
  Next
  For d = 0.5 To 1.5
    Note Str(d)
  Next
End Sub
Dim u As UInt64
Count(counter, u, limit)
Note Str(counter) + " " + Str(u) + " " + Str(limit)
For i As Integer = 1 To 9
  i = 20
Next
For i As Integer = 9 DownTo 1
  i = -20
Next
For i As Integer = 9223372036854775806 To 9223372036854775807
  Note Str(i)
Next
For i As Integer = 5 To 1 Step -2
  Note Str(i)
Next
For i As Integer = 1 DownTo 5 Step -2
  Note Str(i)
Next
For low As UInt8 = 3 DownTo 2
  Note Str(low)
Next
Show

' Return leaves from everywhere, and what stands on the way is done.
Function Found(wanted As Integer) As String
  For i As Integer = 1 To 3
    For Each j As Integer In Array(1, 2, 3)
      Try
        If i * j = wanted Then Return Str(i) + "*" + Str(j)
      Finally
        If wanted = 6 Then Note "passed"
      End Try
    Next
  Next
  Return "none"
End Function
Print Found(6) + " " + Found(9) + " " + Found(7)
Show
Function Early(n As Integer) As Integer
  If n = 1 Then Exit Function
  While True
    If n = 2 Then Return 22
    Exit Function
  Wend
End Function
Print Str(Early(1)) + " " + Str(Early(2)) + " " + Str(Early(3))
Sub Leave(n As Integer)
  Do
    Select Case n
    Case 1
      Exit Sub
    Case 2
      Return
    Case Else
      Exit Do
    End Select
  Loop
  Note "not left"
End Sub
Leave(1)
Leave(2)
Leave(3)
Show
Function Nothing() As String
End Function
Print "[" + Nothing() + "]"
Function Replaced() As String
  Try
    Return "first"
  Finally
    Return "second"
  End Try
End Function
Print Replaced()
For i As Integer = 1 To 2
  Try
    If i = 1 Then Raise New RuntimeException("lost")
  Finally
    If i = 1 Then Continue For
    Print "second round"
  End Try
Next
' Alone, Exit and Continue mean the innermost loop, whatever its kind.
For i As Integer = 1 To 2
  Do
    Exit
  Loop
  n = 0
  While n < 3
    n += 1
    If n < 3 Then Continue
    Note "while " + Str(n)
  Wend
  For j As Integer = 1 To 3
    If j = 2 Then Exit For j
    Note "for " + Str(i) + Str(j)
  Next
Next
Show
Function Found() As Integer
  Do
    For i As Integer = 1 To 3
      Exit
    Next
    Return 5
  Loop
End Function
Print Found
Return
Print "never"
