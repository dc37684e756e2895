' options: --leaks --keeps Int128QTX --keeps UInt128QTX
' Numbers from memory, of all sizes and some wrong ones, and memory behind numbers.
Dim m As New MemoryBlock(32)
For i As Integer = 0 To 31
  m.Byte(i) = &h80 + i
Next

For Each size As Integer In Array(1, 2, 4, 8, 16)
  Dim s As New Int128QTX(m, size)
  Dim u As New UInt128QTX(m, size)
  Print Str(size) + ": " + s.stringValue + " " + u.stringValue
  If size < 16 Then
    Dim z As New Int128QTX(m, size, True)
    Print "   unsigned: " + z.stringValue + " " + Str(u.Equals(z))
  End If
Next

For Each size As Integer In Array(-16, -1, 0, 3, 5, 6, 7, 9, 12, 15, 17, 32, 4294967297)
  Try
    Dim s As New Int128QTX(m, size)
    Print "never reached"
  Catch e As UnsupportedOperationException
    Print Str(size) + ": " + e.Message
  End Try
  Try
    Dim u As New UInt128QTX(m, size, True)
    Print "never reached"
  Catch e As UnsupportedOperationException
    Print Str(size) + ": " + e.Message
  End Try
Next

Try
  Dim s As New Int128QTX(m, 16, True)
  Print "never reached"
Catch e As OutOfBoundsException
  Print e.Message
End Try
m.Byte(15) = &h7F
Dim fits As New Int128QTX(m, 16, True)
Print fits

' What is written through Data is the value; bytes are in order, the low one first.
Dim n As New Int128QTX
Dim p As Ptr = n.Data
For i As Integer = 0 To 15
  p.Byte(i) = m.Byte(i)
Next
Print n.Equals(fits)
p.UInt64(0) = 1
p.Int64(8) = -1
Print n
Print n.LowValue
Print n.HighValue
n.LowValue = 2
n.HighValue = 3
Print p.UInt64(0)
Print p.UInt64(8)

' Asking a shared number for its memory takes it out of the shared ones.
Dim one As UInt128QTX = UInt128QTX.one
p = one.Data
p.Byte(8) = 1
Print one
Print UInt128QTX.one
