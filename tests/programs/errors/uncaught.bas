' exit: 1
Sub Inner()
  Raise New UnsupportedOperationException("no way")
End Sub
Sub Outer()
  Inner
End Sub
Outer
