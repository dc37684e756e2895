' exit: 1
Sub Work()
End Sub
Dim t As New Thread
AddHandler t.Stop, AddressOf Work
