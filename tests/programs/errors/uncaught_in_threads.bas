' exit: 1
' What a thread does not catch ends the thread alone; what is raised again keeps its place.
Sub Fail()
  Dim a() As Integer
  Print a(3)
End Sub
Sub Again()
  Try
    Fail
  Catch e As NilObjectException
    Print "never"
  Finally
    Print "finally"
  End Try
End Sub
Dim t As New Thread
AddHandler t.Run, AddressOf Again
t.Start
t.Join
Print "goes on"
Try
  Fail
Catch e As RuntimeException
  Print e.Message
  Try
    Raise e
  Catch
    Print "again"
  End Try
End Try
Dim none As RuntimeException
Try
  Raise none
Catch e As NilObjectException
  Print e.Message
End Try
Try
  Raise New OutOfMemoryException
Catch e As OutOfBoundsException
  Print "never"
End Try
