' Classes: which object it is, as what it is seen, and the members that classes bring for operators.
Dim e As RuntimeException = New OutOfBoundsException("far", 3)
Print Str(e IsA OutOfBoundsException) + " " + Str(e IsA NilObjectException) + " " + Str(e IsA RuntimeException)
Dim far As OutOfBoundsException = OutOfBoundsException(e)
Print Str(far Is e) + " " + far.Message + " " + Str(far.ErrorNumber)
Try
  Dim wrong As NilObjectException = NilObjectException(e)
Catch m As TypeMismatchException
  Print m.Message
End Try
Dim o As Object = e
Print Str(o Is e) + " " + Str(o IsA RuntimeException) + " " + Str(o = e) + " " + Str(o <> e) + " " + Str(o <> Nil)
Print RuntimeException(o).Message
o = Nil
Print Str(o Is Nil) + " " + Str(Nil = o) + " " + Str(o IsA Date) + " " + Str(Date(o) Is Nil)
Dim plain As New RuntimeException
Print "[" + plain.Message + "] " + Str(plain.ErrorNumber)
plain.Message = "written"
plain.ErrorNumber += 4
plain.Message = plain.Message + "!"
Print plain.Message + " " + Str(plain.ErrorNumber)
Dim day As New Date
day.TotalSeconds = 86400
Dim moment As New DateTime
moment.SecondsFrom1970 = -1.5
Print Str(day.TotalSeconds) + " " + Str(moment.SecondsFrom1970)
Print Str(VarType(day)) + " " + Str(VarType(moment)) + " " + Str(VarType(plain))

' A class's own operators, on either side, and where it has none what it converts to.
Dim n As New Int128QTX(40)
Dim u As New UInt128QTX(2)
Print n + 2
Print 100 - n
Print n \ 3
Print -n
Print n > u
Print u < n
Print 41 > n
Print Str(n = 40) + " " + Str(40 <> n)
Dim a As New AtomicIntegerQTX
a = 12
Print a * 2
Print 2 ^ a
Print (a And 10)
Print Not a
Print a = 12
Print "is " + Str(a)
Dim i8 As Int8 = a
Dim d As Double = a
Print Str(i8) + " " + Str(d)
Dim s As String = n
Print s.Length
Dim asVariant As Variant = n
Print asVariant IsA Int128QTX

' An assignment from another type changes the object that is there; where there is none, it makes one.
Dim same As Int128QTX = n
n = 7
Print Str(same) + " " + Str(same Is n)
n = "-170141183460469231731687303715884105728"
Print n
Dim fresh As Int128QTX
fresh = 5
Print fresh
fresh = Nil
Print fresh Is Nil

' Shared members, modules, and methods of values.
Print Int128QTX.one + Int128QTX.two
Print UInt128QTX.supported
Print MathGlobalsQTX.FacQTX(4)
Print FacQTX(MathGlobalsQTX.FacQTX(3))
Print Encodings.UTF8
Dim k As Integer = 5
Print k.ToString + " " + k.Str + " " + (k + 1).Hex
Print n.zero
Print Not True Xor MathGlobalsQTX.Debugging
Debugging = False
Print Debugging
MathGlobalsQTX.Debugging = False
