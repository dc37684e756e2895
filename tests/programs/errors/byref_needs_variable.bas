' exit: 1
Sub Change(ByRef n As Integer)
End Sub
Change(5)
