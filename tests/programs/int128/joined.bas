' A text that is joined with a number is read as one, which is said where it looks like prose.
Dim n As Int128QTX = 20
Dim u As New UInt128QTX(5)
Dim text As String = "30"
Print "n = " + n
Print "a" + "b" + n
Print u + " pieces"
Print "10" + n
Print " -1 " + n
Print text + n
Print "n = " + Str(n) + " " + n.stringValue
