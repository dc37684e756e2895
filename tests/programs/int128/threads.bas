' options: --leaks --keeps Int128QTX --keeps UInt128QTX
' Threads that all compute with small numbers, some changing what they got in place: nobody's object goes away, and a
' number made with New is nobody else's.
Const Rounds = 3000
Dim wrong As New AtomicIntegerQTX

Sub Compute()
  Dim sum As New Int128QTX(0)
  For i As Integer = 1 To Rounds
    Dim three As New Int128QTX(300)
    Dim product As Int128QTX = (three - 296) * 100
    If product.HighValue <> 0 Then Call wrong.Increment
    Dim two As Int128QTX = three - 298  ' whatever it is by now
    If two Is Nil Then Call wrong.Increment
    sum = sum + 1000
  Next
  If sum <> Rounds * 1000 Then Call wrong.Increment
End Sub

Sub Change()
  For i As Integer = 1 To Rounds
    Dim shared_ As Int128QTX = Int128QTX.two
    shared_.Inc
    Dim other As UInt128QTX = UInt128QTX.one
    other.Dec
  Next
End Sub

Dim threads(3) As Thread
For i As Integer = 0 To 3
  threads(i) = New Thread
  If i Mod 2 = 0 Then
    AddHandler threads(i).Run, AddressOf Compute
  Else
    AddHandler threads(i).Run, AddressOf Change
  End If
  threads(i).Start
Next
For Each t As Thread In threads
  t.Join
Next
Print wrong.Value
