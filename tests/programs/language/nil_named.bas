' The message says which variable is Nil, also where no member is named.
Dim c As AtomicIntegerQTX
Dim d As Dictionary
Dim n As Integer
Try
  n = c + 1
Catch e As NilObjectException
  Print e.Message
End Try
Try
  n = d("key")
Catch e As NilObjectException
  Print e.Message
End Try
Try
  d("key") = 1
Catch e As NilObjectException
  Print e.Message
End Try
Try
  n = c
Catch e As NilObjectException
  Print e.Message
End Try
Class Holder
  Dim Inner As AtomicIntegerQTX
End Class
Dim h As New Holder
Try
  Print 5 + h.Inner
Catch e As NilObjectException
  Print e.Message
End Try
