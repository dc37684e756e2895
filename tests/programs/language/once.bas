' What an assignment's target computes is computed once, and what it reads is what it changes.
Dim calls As Integer
Function Count() As Integer
  calls = calls + 1
  Return calls
End Function

Dim a(3) As Integer
a(Count()) += 10
a(Count()) -= 1
a(Count() - 3) *= 7
Print Str(calls) + ": " + Str(a(0)) + " " + Str(a(1)) + " " + Str(a(2)) + " " + Str(a(3))

Dim words() As String = Array("one", "two", "three", "four", "five")
words(Count()) += "!"
Print Str(calls) + ": " + Join(words, " ")

' An object that takes on a value stays the same object.
Dim numbers(9) As AtomicIntegerQTX
numbers(Count()) = 4
Dim five As AtomicIntegerQTX = numbers(5)
numbers(Count() - 1) *= 3
Print Str(calls) + ": " + Str(five.Value)
Dim eight As New AtomicIntegerQTX
eight = 8
numbers(6) = eight
Print Str(five.Value) + " " + Str(numbers(6).Value)

' Members behind a call, and memory.
Function Fifth() As AtomicIntegerQTX
  calls = calls + 1
  Return numbers(5)
End Function
Fifth.Value += 5
Print Str(calls) + ": " + Str(five.Value)
Dim m As New MemoryBlock(8)
m.UInt16Value(Count() - 6) = 500
m.UInt16Value(Count() - 7) /= 2
Print Str(calls) + ": " + Str(m.UInt16Value(2)) + " " + Str(m.UInt8Value(2))
Dim p As Ptr = m
p.Byte(Count() - 8) += 10
Print Str(calls) + ": " + Str(m.UInt8Value(2))

' An index that throws changes nothing.
Try
  a(Count()) += 1
Catch e As OutOfBoundsException
  Print Str(calls) + ": out of bounds"
End Try

' By reference, and variants.
Sub Grow(ByRef n As Integer, ByRef v As Variant)
  n += 1
  v += n
End Sub
Dim v As Variant = 1.5
Grow(a(0), v)
Print Str(a(0)) + " " + Str(v)
v += " and text"
Print v

' A member of what an index or a call gives.
calls = 0
numbers(1) = New AtomicIntegerQTX
numbers(Count()).Value += 1
Function At(n As Integer) As AtomicIntegerQTX
  Return numbers(n)
End Function
At(Count() - 1).Value -= 4
Print Str(calls) + ": " + Str(numbers(1).Value)
Dim missing(3) As AtomicIntegerQTX
Try
  missing(Count()).Value += 1
Catch e As RuntimeException
  Print Str(calls) + ": " + e.Message
End Try
