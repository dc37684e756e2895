' exit: 1
Class Failing
  Sub Destructor()
    Raise New OutOfBoundsException("nobody waits for this")
  End Sub
End Class
Dim f As New Failing
f = Nil
Print "goes on"
