' Operators on the numbers that are no plain Integer.
Dim n As Integer = 5
Dim u As UInt64 = 12
Dim small As UInt8 = 12
Print Str(-n) + " " + Str(-u) + " " + Str(-small) + " " + Str(+n)
Print Str(u And 10) + " " + Str(10 Or u) + " " + Str(u Xor n) + " " + Str(Not u) + " " + Str(Not small)
Print Str(u \ 5) + " " + Str(u Mod n) + " " + Str(n * u) + " " + Str(u - n) + " " + Str(n - u) + " " + Str(u / n)
For u = 1 To 9 Step 4
  Print u
Next
Print True = Not False
Print 5 - Not 1
Print Not Not True

' Currency is exact in sums and times an integer, a fraction otherwise.
Dim c As Currency = 19.99
Dim d As Currency = 0.01
Dim half As Single = 0.5
Print Str(c + d) + " " + Str(c - d) + " " + Str(c + n) + " " + Str(n - c) + " " + Str(c * 3) + " " + Str(3 * d)
Print Str(c * d) + " " + Str(c / d) + " " + Str(c + 0.5) + " " + Str(half - d) + " " + Str(c * half) + " " + Str((c + d) ^ 2)
Print Str(c \ 3) + " " + Str(c Mod 3) + " " + Str(7.9 \ c)
Print Str(c > d) + " " + Str(c = d) + " " + Str(c < 20) + " " + Str(19.99 = c) + " " + Str(n > c)

' Singles stay Singles among themselves, but for powers.
Dim third As Single = 1 / 3
Dim two As Single = 2
Print Str(third + half) + " " + Str(third - half) + " " + Str(third * half) + " " + Str(third / half) + " " + Str(half ^ two)
Print Str(third < half) + " " + Str(third + n) + " " + Str(third * 1.0)

' Signed and unsigned numbers are compared by what they are.
Dim least As Int64 = -1
Print Str(least < u) + " " + Str(u > least) + " " + Str(u <> least) + " " + Str(u >= n) + " " + Str(n <= u)

' An array that a method gives is indexed at once.
Dim q As New AtomicQueueQTX
q.Push("first")
q.Push(2)
Print q.Values(0) + " " + Str(q.Values(1)) + " " + Str(q.Values.Count) + " " + Str(q.Values().LastIndex)
