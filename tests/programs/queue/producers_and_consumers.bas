' takes: long
' Several producers and consumers over one queue and over several: nothing lost, nothing twice.
Const Producers = 3
Const Consumers = 3
Const PerProducer = 20000
Const Queues = 4

Dim all(3) As AtomicQueueQTX
Dim shared As New AtomicQueueQTX
Dim producing As New AtomicIntegerQTX
Dim started As New AtomicIntegerQTX
Dim counts As New AtomicQueueQTX
Dim sums As New AtomicQueueQTX
Dim several As Boolean

Function QueueAt(i As Integer) As AtomicQueueQTX
  If several Then Return all(i Mod Queues)
  Return shared
End Function

' Values are first * PerProducer + i, so that each is different.
Sub Produce()
  Dim first As Integer = started.Increment
  For i As Integer = 1 To PerProducer
    Dim q As AtomicQueueQTX = QueueAt(i)
    If i Mod 2 = 0 Then
      q.Push(first * PerProducer + i)
    Else
      q.Insert(first * PerProducer + i)
    End If
  Next
  Call producing.Decrement
End Sub

Sub Consume()
  Dim count As Integer
  Dim sum As Integer
  Dim turn As Integer
  Dim empty As Integer
  Do
    Dim last As Boolean = (producing.Value = 0)
    Dim v As Variant
    If turn Mod 2 = 0 Then
      v = QueueAt(turn).PopFirst
    Else
      v = QueueAt(turn).PopLast
    End If
    turn = turn + 1
    If v Is Nil Then
      empty = empty + 1
      If last And empty > Queues Then Exit
    Else
      Dim n As Integer = v
      empty = 0
      count = count + 1
      sum = sum + n
    End If
  Loop
  counts.Push(count)
  sums.Push(sum)
End Sub

Sub RunAll()
  started.Value = 0
  producing.Value = Producers
  Dim threads(5) As Thread
  For i As Integer = 0 To Producers + Consumers - 1
    threads(i) = New Thread
    If i < Producers Then
      AddHandler threads(i).Run, AddressOf Produce
    Else
      AddHandler threads(i).Run, AddressOf Consume
    End If
  Next
  For Each t As Thread In threads
    t.Start
  Next
  For Each t As Thread In threads
    t.Join
  Next
  Dim count As Integer
  Dim sum As Integer
  For i As Integer = 1 To Consumers
    Dim c As Integer = counts.PopFirst
    Dim s As Integer = sums.PopFirst
    count = count + c
    sum = sum + s
  Next
  Print count
  Print sum
End Sub

For i As Integer = 0 To Queues - 1
  all(i) = New AtomicQueueQTX
Next
RunAll
several = True
RunAll
