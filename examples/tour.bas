' A tour of the library: what each group of it does, in a page.
'
'   ./qtx run examples/tour.bas

Const Workers = 4
Const Rounds = 25000

Dim total As New AtomicIntegerQTX  ' shared by all threads
Dim printing As New AtomicFlagQTX  ' held by the thread that prints

Sub Worker()
  For i As Integer = 1 To Rounds
    Call total.Increment
  Next
  While printing.TestAndSet
    ' another thread is printing: spin until it has done
  Wend
  Print "  a worker is through"
  printing.Clear
End Sub

' --- Mathematics -------------------------------------------------------------
Print "Mathematics"
Print "  the hypotenuse over 3 and 4:  " + Str(HypotQTX(3, 4))
Print "  10 factorial:                 " + Str(FacQTX(10))
Print "  the cube root of 27:          " + Format(SqrtQTX(27, 3), "0.000000")
Print "  1234.5678, to two decimals:   " + Str(RoundQTX(1234.5678, 2))
Dim exponent As Integer
Dim significand As Double = FRExpQTX(40, exponent)
Print "  40 is " + Str(significand) + " times 2 to the power " + Str(exponent)
Print "  1 / 0 is finite:              " + Str(IsFiniteQTX(1 / 0))

' --- Counting with threads ---------------------------------------------------
Print "Threads"
Dim threads(Workers - 1) As Thread
For i As Integer = 0 To Workers - 1
  threads(i) = New Thread
  AddHandler threads(i).Run, AddressOf Worker
  threads(i).Start
Next
For Each t As Thread In threads
  t.Join
Next
Print "  together they counted to " + Str(total.Value)

' The operators of a shared counter change it and give the value before: one
' step that no other thread can come between.
Dim before As Int64 = total - 100000
Print "  subtracting 100000 from " + Str(before) + " leaves " + Str(total.Value)

' --- A queue --------------------------------------------------------------
Print "A queue of values, safe to share"
Dim queue As New AtomicQueueQTX
queue.Push("first")
queue.Push(2)
queue.Insert("before them all")
Print "  it holds " + Str(queue.Count) + "; the front is: " + Str(queue.PopFirst) + ", the back: " + Str(queue.PopLast)

' --- Numbers of 128 bits ------------------------------------------------------
Print "128-bit integers"
Dim product As Int128QTX = 1
For i As Integer = 1 To 30
  product = product * i
Next
Print "  30 factorial, to the last digit: " + Str(product)
Dim most As New UInt128QTX("340282366920938463463374607431768211455")
Print "  the greatest there is has " + Str(most.PopCount) + " bits, and its root is " + Str(most.Sqrt)

' --- A curve ------------------------------------------------------------------
Print "A spline through (0, 0), (1, 1), (2, 4)"
Dim curve As New SplineQTX(Array(0.0, 1.0, 2.0), Array(0.0, 1.0, 4.0))
Print "  at 1.5 it is " + Format(curve.calc(1.5), "0.0000")

' --- Errors ------------------------------------------------------------------
Print "Errors"
Try
  If total < Nil Then Print "  never reached"
Catch e As NilObjectException
  Print "  comparing with Nil: " + e.Message
End Try
