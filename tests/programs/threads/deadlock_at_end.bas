' exit: 1
' The module level has ended, and one thread waits for what the other has taken with it.
Dim section As New CriticalSection
Dim begun As New Semaphore(0)
Sub Take(t As Thread)
  section.Enter
  begun.Release
End Sub
Sub Wait(t As Thread)
  section.Enter
End Sub
Dim a As New Thread
AddHandler a.Run, AddressOf Take
a.Start
begun.Signal
Dim b As New Thread
AddHandler b.Run, AddressOf Wait
b.Start
