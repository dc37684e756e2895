' Every form of the statements, and what ends them.
Dim log As String
Sub Note(s As String)
  log = log + s + " "
End Sub
For i As Integer = 1 To 10 Step 4
  Note Str(i)
Next i
For i As Integer = 5 DownTo 1 Step 2
  Note Str(i)
Next
For i As Integer = 3 To 1
  Note "never"
Next
For i As Integer = 1 To 3 Step -1
  Note "never"
Next
For b As UInt8 = 253 To 255
  Note Str(b)
Next
For b As Int8 = -126 DownTo -128
  Note Str(b)
Next
For u As UInt64 = 2 DownTo 0
  Note Str(u)
Next
For i As Integer = 1 To 3
  For j As Integer = 1 To 3
    If j = 2 Then Continue For
    If i = 2 Then Exit For
    Note Str(i) + Str(j)
  Next
Next
Print log
log = ""
Dim n As Integer
Do While n < 3
  n = n + 1
  While True
    Exit While
  Wend
  If n = 2 Then Continue Do
  Note Str(n)
Loop
Do Until n = 0
  n = n - 1
Loop
Do
  n = n + 1
Loop While n < 5
Do
  n = n + 1
  Exit Do
Loop
Note Str(n)
If n = 6 Then Note "six" Else Note "not six"
If n = 7 Then Note "seven" Else Note "not seven"
If n < 6 Then
  Note "less"
ElseIf n > 6 Then
  Note "more"
Else
  Note "same"
End If
Print log

Function Kind(n As Integer) As String
  Select Case n
  Case 0
    Return "zero"
  Case 1, 3, 5
    Return "odd"
  Case 10 To 20
    Return "teens"
  Case Is < 0
    Return "negative"
  Case Else
    Return "other"
  End Select
End Function
Print Kind(0) + " " + Kind(3) + " " + Kind(20) + " " + Kind(-9) + " " + Kind(99)
Dim word As String = "b"
Select Case word
Case "a"
  Print "a"
Case "B"
  Print "b, in any case"
End Select

Function Tried(what As Integer) As String
  Dim trace As String
  Try
    trace = trace + "try "
    If what = 1 Then Raise New NilObjectException("one")
    If what = 2 Then Raise New OutOfBoundsException("two")
    If what = 3 Then Return trace + "returned"
  Catch e As NilObjectException
    trace = trace + "nil:" + e.Message + " "
  Catch e As RuntimeException
    trace = trace + "any:" + e.Message + " "
  Finally
    trace = trace + "finally"
    If what = 4 Then Return "finally wins"
  End Try
  Return trace
End Function
For i As Integer = 0 To 4
  Print Tried(i)
Next
Dim x As Integer = 1 : Dim y As Integer = 2 : Print x + y
rem a remark
Print "done" ' the end

Function Size(n As Integer) As String
  Select Case n
  Case 1, 2
    Return "few"
  Else
    Return "many"
  End Select
End Function
Print Size(2) + " " + Size(3)
Private Sub Hidden()
  Print "a Sub of the program's own"
End Sub
Hidden
