' What a thread does, and which one it is.
Dim begun As New Semaphore(0)
Dim goOn As New Semaphore(0)
Dim awake As New AtomicIntegerQTX

Sub Work(t As Thread)
  Print Thread.Current Is t
  Print t.State = Thread.Running
  begun.Release
  goOn.Signal
  While awake.Value = 0
    Thread.Sleep(50)
  Wend
  Try
    t.Join
  Catch e As UnsupportedOperationException
    Print e.Message
  End Try
End Sub

Print Thread.Current Is Nil
Dim t As New Thread
AddHandler t.Run, AddressOf Work
Print t.ThreadState = Thread.NotRunning
t.Start
begun.Signal
While t.State <> Thread.Waiting
  Thread.Sleep(1)
Wend
Print t.IsRunning
Try
  t.Start
Catch e As UnsupportedOperationException
  Print e.Message
End Try
goOn.Release
While t.ThreadState <> Thread.Sleeping
  Thread.Sleep(1)
Wend
awake.Increment
t.Join
Print t.State = Thread.NotRunning
Print t.State = Thread.Suspended
t.Join
Dim before As Double = Microseconds
Thread.Sleep(20)
Print Microseconds - before >= 20000
Thread.Sleep(-5)
