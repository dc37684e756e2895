' exit: 1
Sub Nothing()
End Sub
Print Nothing()
