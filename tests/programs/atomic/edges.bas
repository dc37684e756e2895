' The edges of the 64-bit range, and what the operators do to the counter.
Dim c As New AtomicIntegerQTX
Const Smallest = -9223372036854775807 - 1
c = 9223372036854775807
Print Str(c.Increment) + " " + Str(c.Value)
c = 0
Print Str(c.Decrement) + " " + Str(c.Value)
c = 5
Print Str(c.Subtract(Smallest)) + " " + Str(c.Value)
Print Str(c.BitwiseAnd(0)) + " " + Str(c.Value)
c = 10
Print c + 3
Print c - 3
c += 5  ' adds 5, then stores what `+` gave: the value before
Print c.Value
Dim f As New AtomicFlagQTX
f = True
f = True
Print Str(f.TestAndSet) + " " + Str(f.Test)
f = False
f = False
Print Str(f.TestAndSet) + " " + Str(f.Test)
