' Threads: started, asked, joined, started again, and what is wrong with one.
Dim runs As New AtomicIntegerQTX
Dim waiting As New AtomicFlagQTX
Dim seen As Thread
Sub Work()
  Call runs.Increment
End Sub
Sub Wait(t As Thread)
  seen = t
  While waiting.TestAndSet
  Wend
End Sub
Dim t As New Thread
AddHandler t.Run, AddressOf Work
t.Start
t.Join
t.Join
Print Str(runs.Value) + " " + Str(t.IsRunning)
t.Start
t.Join
Print runs.Value
AddHandler t.Run, AddressOf Wait
Call waiting.TestAndSet
t.Start
Print t.IsRunning
Try
  t.Start
Catch e As UnsupportedOperationException
  Print e.Message
End Try
waiting.Clear
t.Join
Print seen Is t
Dim idle As New Thread
idle.Start
idle.Join
Print idle.IsRunning
Dim none As Thread
Try
  AddHandler none.Run, AddressOf Work
Catch e As NilObjectException
  Print e.Message
End Try
Try
  none.Start
Catch e As NilObjectException
  Print e.Message
End Try
Dim all(2) As Thread
For i As Integer = 0 To 2
  all(i) = New Thread
  AddHandler all(i).Run, AddressOf Work
  all(i).Start
Next
For Each one As Thread In all
  one.Join
Next
Print runs.Value

' A class that inherits from Thread has its own Sub Run, unless a handler takes its place.
Class Worker
  Inherits Thread
  Property Name As String = "worker"
  Sub Run()
    Print Name + " runs " + Str(Thread.Current Is Self)
  End Sub
End Class
Class LoudWorker
  Inherits Worker
  Sub Run()
    Super.Run
    Print "loudly"
  End Sub
End Class
Sub Instead()
  Print "instead"
End Sub
Dim worker As Worker = New LoudWorker
worker.Start
worker.Join
AddHandler worker.Run, AddressOf Instead
worker.Start
worker.Join
