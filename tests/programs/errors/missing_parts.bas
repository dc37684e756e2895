' exit: 1
' Of blocks that lack one line, that line alone is reported.
Sub NoEndIf(a As Integer)
  While a > 0
    If a = 1 Then
      If a = 2 Then
        Print "2"
      Else
        Print "3"
    Else
      Print "4"
    End If
    a = a - 1
  Wend
End Sub
Sub NoEndSelect(a As Integer)
  Select Case a
  Case 1
    Select Case a * 2
    Case 2
      Print "2"
    Case Else
      Print "3"
  Case 2
    Print "4"
  End Select
End Sub
Sub NoEndSelectInIf(a As Integer)
  If a = 1 Then
    Select Case a
    Case 1
      Print "1"
    Case Else
      Print "2"
  Else
    Print "3"
  End If
End Sub
Sub NoSelect(a As Integer)
  Case 1
    Print "1"
  Case 2
    Print "2"
  Case Else
    Print "3"
  End Select
End Sub
Sub NoIf(a As Integer)
    Print "1"
  ElseIf a = 2 Then
    Print "2"
  Else
    Print "3"
  End If
End Sub
Sub NoTry()
    Print "1"
  Catch e As RuntimeException
  Finally
    Print "3"
  End Try
End Sub
Sub TwoElses(a As Integer)
  If a = 1 Then
    Print "1"
  Else
    Print "2"
  Else
    Print "3"
  End If
End Sub
Wend
Wend
Dim d As New Dictionary
With d
  .Value("a") = 1
  If True Then
    .Value("b") = 2
  End If
End With
Using d
  Print d.Count
End Using
