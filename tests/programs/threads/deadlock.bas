' exit: 1
' Each thread has what the next one waits for.
Dim first As New CriticalSection
Dim second As New Mutex("second")
Dim begun As New Semaphore(0)

Sub Worker(t As Thread)
  Try
    second.Enter
    begun.Release
    first.Enter
    Print "never"
  Catch e As RuntimeException
    Print "no exception"
  End Try
End Sub
Sub Waiter(t As Thread)
  begun.Signal
End Sub

Print "before"
first.Enter
Dim t As New Thread
AddHandler t.Run, AddressOf Worker
t.Start
begun.Signal
Dim w As New Thread
AddHandler w.Run, AddressOf Waiter
w.Start
second.Enter
Print "never"
