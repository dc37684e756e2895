' CriticalSection, Mutex and Semaphore.
Dim section As New CriticalSection
Dim total As Integer

Sub Count(t As Thread)
  For i As Integer = 1 To 1000
    section.Enter
    section.Enter
    total = total + 1
    section.Leave
    section.Leave
  Next
End Sub
Dim threads(3) As Thread
For i As Integer = 0 To 3
  threads(i) = New Thread
  AddHandler threads(i).Run, AddressOf Count
  threads(i).Start
Next
For Each t As Thread In threads
  t.Join
Next
Print total
Try
  section.Leave
Catch e As IllegalLockingException
  Print e.Message
End Try

' A Mutex of one name is the same for all that give it.
Dim entered As New Semaphore(0)
Dim tried As New Semaphore(0)
Sub Hold(t As Thread)
  Dim other As New Mutex("shared")
  other.Enter
  entered.Release
  tried.Signal
  other.Leave
End Sub
Dim holder As New Thread
AddHandler holder.Run, AddressOf Hold
holder.Start
entered.Signal
Dim named As New Mutex("shared")
Dim unnamed As New Mutex
Print named.TryEnter
Print unnamed.TryEnter
unnamed.Leave
tried.Release
named.Enter
Print named.TryEnter
named.Leave
named.Leave
holder.Join
Try
  named.Leave
Catch e As RuntimeException
  Print e IsA IllegalLockingException
End Try

' So many at once as the count says.
Dim places As New Semaphore(2)
Dim inside As New AtomicIntegerQTX
Dim most As New AtomicIntegerQTX
Sub Enter(t As Thread)
  For i As Integer = 1 To 50
    places.Signal
    inside.Increment
    section.Enter
    most = Max(most.Value, inside.Value)
    section.Leave
    inside.Decrement
    places.Release
  Next
End Sub
For i As Integer = 0 To 3
  threads(i) = New Thread
  AddHandler threads(i).Run, AddressOf Enter
  threads(i).Start
Next
For Each t As Thread In threads
  t.Join
Next
Print most.Value <= 2
Print places.TrySignal
Print places.TrySignal
Print places.TrySignal
Dim one As New Semaphore
Print one.TrySignal
Print one.TrySignal
Try
  Dim less As New Semaphore(-1)
Catch e As OutOfBoundsException
  Print e.Message
End Try
Dim full As New Semaphore(9223372036854775807)
Try
  full.Release
Catch e As OutOfBoundsException
  Print e.Message
End Try
Print full.TrySignal
full.Release
