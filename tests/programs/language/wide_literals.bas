' Literals beyond what holds them, and an object that is changed by the sum it stands last in.
Dim big As Int64 = 9223372036854775808
Dim bits As Int64 = &hFFFFFFFFFFFFFFFF
Dim least As Int64 = -9223372036854775808
Dim below As Int64 = -9223372036854775809
Dim huge As Single = 1e300
Dim money As Currency = 1e15
Dim fine As Single = 0.1
Dim cent As Currency = 922337203685477
Dim most As UInt64 = 18446744073709551615
Dim counter As New AtomicIntegerQTX
counter = 1 + counter
Print Str(big) + " " + Str(bits) + " " + Str(least) + " " + Str(below)
Print Str(huge) + " " + Str(money) + " " + Str(fine) + " " + Str(cent) + " " + Str(most)
Print counter.Value
