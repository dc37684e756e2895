' Where a member of Nil is used, the message names it as the program writes it: of fields, computed properties,
' methods and elements too.
Class Node
  Dim name As String
  Dim following As Node
  Property Shout As String
    Get
      Return Uppercase(name)
    End Get
    Set
      name = Lowercase(value)
    End Set
  End Property
  Function Second() As Node
    Return following
  End Function
  Sub Rename(called As String)
    name = called
  End Sub
  Function NextName() As String
    Return following.name
  End Function
End Class
Dim first As New Node
Dim nodes(1) As Node
Dim counter As AtomicIntegerQTX
Try
  Print first.following.name
Catch e As NilObjectException
  Print e.Message
End Try
Try
  first.following.name = "x"
Catch e As NilObjectException
  Print e.Message
End Try
Try
  Print first.following.Shout
Catch e As NilObjectException
  Print e.Message
End Try
Try
  first.Second.Shout = "x"
Catch e As NilObjectException
  Print e.Message
End Try
Try
  nodes(1).Rename("x")
Catch e As NilObjectException
  Print e.Message
End Try
Try
  Print first.NextName
Catch e As NilObjectException
  Print e.Message
End Try
Try
  Print counter.Value
Catch e As NilObjectException
  Print e.Message
End Try
Sub Within(node As Node)
  node.name += "x"
End Sub
Try
  Within(Nil)
Catch e As NilObjectException
  Print e.Message
End Try

' So does the message where a delegate is Nil.
Delegate Function Naming(node As Node) As String
Class Namer
  Dim how As Naming
  Dim several(1, 1) As Naming
  Sub Work()
    Print how(Nil)
  End Sub
End Class
Dim rule As Naming
Dim namer As New Namer
Try
  Print rule(first)
Catch e As NilObjectException
  Print e.Message
End Try
Try
  Print namer.how.Invoke(first)
Catch e As NilObjectException
  Print e.Message
End Try
Try
  namer.Work
Catch e As NilObjectException
  Print e.Message
End Try
Try
  Print namer.several(0, 1).Invoke(first)
Catch e As NilObjectException
  Print e.Message
End Try
