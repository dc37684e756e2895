' What becomes of a value in a variable of another type, and how it is shown.
Dim i8 As Int8 = 200
Dim i16 As Int16 = 40000
Dim i32 As Int32 = 3000000000
Dim u8 As UInt8 = 300
Dim u16 As UInt16 = -1
Dim u32 As UInt32 = -1
Dim u64 As UInt64 = -1
Print Str(i8) + " " + Str(i16) + " " + Str(i32) + " " + Str(u8) + " " + Str(u16) + " " + Str(u32) + " " + Str(u64)
Dim n As Integer = i16
Print n
n = u64
Print n
i8 = n + 129
Print i8

' Fractions lose their decimals in an integer, and stop at its borders.
Dim d As Double = -2.75
i32 = d
u64 = d
Print Str(i32) + " " + Str(u64)
d = 1e19
n = d
u64 = d
Print Str(n) + " " + Str(u64)
u64 = 1e30
Print u64
n = 0 / 0
Print n
n = -1e30
Print n
d = u64
Print d

' Single, Currency and Boolean.
Dim s As Single = 2.5
Dim c As Currency = s
n = s
d = s
u64 = s
Print Str(s) + " " + Str(c) + " " + Str(n) + " " + Str(d) + " " + Str(u64)
s = d / 3
Print s
s = c
d = c
n = c
u64 = c
Print Str(s) + " " + Str(d) + " " + Str(n) + " " + Str(u64)
c = -7
s = n
Print Str(c) + " " + Str(s) + " " + Str(-c) + " " + Str(-s)
c = 0.00005
Print c
s = 0 / 0
Print s
s = -1e300
Print s
Print -(1 / 0)

' Through a variant everything plain becomes everything else.
Dim v As Variant = " -12.5 apples"
n = v
d = v
s = v
c = v
u64 = v
i8 = v
Print Str(n) + " " + Str(d) + " " + Str(s) + " " + Str(c) + " " + Str(u64) + " " + Str(i8)
v = "18446744073709551615"
u64 = v
n = v
Print Str(u64) + " " + Str(n)
v = "   "
u64 = v
Print u64
Dim b As Boolean
For Each text As String In Split("True,true,1,0,False,x", ",")
  v = text
  b = v
  Print text + " is " + Str(b)
Next
v = 0.5
b = v
Print b
v = 0
b = v
Print b
v = True
n = v
d = v
Print Str(n) + " " + Str(d) + " " + v
v = c
n = v
Print Str(n) + " " + v
v = s
c = v
Print Str(VarType(v)) + " " + Str(c)
v = Nil
n = v
d = v
b = v
Dim empty As String = v
Print Str(n) + " " + Str(d) + " " + Str(b) + "[" + empty + "][" + Str(v) + "]"

' What Str and Print show of the others.
Dim p As Ptr
Dim a() As Double = Array(0.5, 1)
Dim none() As String = Nil
Dim o As Object
Dim stamp As New Date
Print Str(p) + " " + Str(a) + " " + Str(Nil)
Print none
Print o
o = stamp
Print Str(o) + " " + Str(stamp)
v = stamp
Print v
v = a
Print v
v = p
Print Str(v) + " " + Str(VarType(v))
