' What runs, but surprises.
Dim u As UInt128QTX = 5
Print u * -1
Dim n As Int128QTX = 5
Print n * 1.5
Dim half As Double = 0.5
Print n + half
Dim c As New AtomicIntegerQTX
c = c + 1
c += 1
c = c * 2
Print c.Value
Dim b As Byte = 300
Print b
Dim i As Integer = 1.5
Print i
Dim big As UInt64 = -1
Print big
Print “curly” ’ as is this
Function Some(n As Integer) As Integer
  If n > 0 Then Return 1
End Function
Print Some(0)
Function All(n As Integer) As Integer
  While True
    n = n - 1
    If n < 0 Then Return n
    For k As Integer = 1 To 2
      Exit For
    Next
  Wend
End Function
Print All(1)
Function Cases(n As Integer) As Integer
  Select Case n
  Case 1
    Return 1
  Case Else
    Raise New RuntimeException("no", 1)
  End Select
End Function
Print Cases(1)
Function Tried() As Integer
  Try
    Return 1
  Catch e As RuntimeException
    Return 2
  End Try
End Function
Print Tried()
Function Leaves() As Integer
  Do
    Exit Do
  Loop
End Function
Print Leaves()
' None of these.
Dim small As Byte = 255
Dim whole As Integer = 2.0
Dim least As Int8 = -128
n += 1
Print n + 2
Print small + whole + least
