' Numbers in the formats of files: half floats, as images and neural networks
' store them, and the 80-bit extended floats of audio files, written into a
' MemoryBlock and read back.
'
'   ./qtx run examples/binary_files.bas

Function TwoDigits(byteValue As Integer) As String
  Return Right("0" + Hex(byteValue), 2)
End Function

Function Dump(m As MemoryBlock) As String
  Dim text As String
  For i As Integer = 0 To m.Size - 1
    If i > 0 Then text = text + " "
    text = text + TwoDigits(m.Byte(i))
  Next
  Return text
End Function

' --- Half floats: two bytes for each number ------------------------------------
Dim weights() As Double = Array(0.0, 1.0, -2.0, 0.333333, 65504.0, 1e-7, 1e6)
Dim halves As New MemoryBlock(2 * (weights.Ubound + 1))
For i As Integer = 0 To weights.Ubound
  halves.UInt16Value(2 * i) = ConvertToFloat16QTX(weights(i))
Next
Print "half floats: " + Dump(halves)
For i As Integer = 0 To weights.Ubound
  Dim back As Single = ConvertFromFloat16QTX(halves.UInt16Value(2 * i))
  Print "  " + Str(weights(i)) + " is read back as " + Str(back)
Next

' --- Extended floats: the sample rate of an audio file --------------------------
' The COMM chunk of an AIFF file: its name, the size, then channels, frames, bits
' for each sample and the sample rate, all with the most significant byte first.
Dim chunk As New MemoryBlock(26)
chunk.LittleEndian = False
chunk.StringValue(0, 4) = "COMM"
chunk.UInt32Value(4) = 18
chunk.UInt16Value(8) = 2
chunk.UInt32Value(10) = 441000
chunk.UInt16Value(14) = 16
chunk.StringValue(16, 10) = DoubleToExtendedStrQTX(44100)
Print "COMM chunk:  " + Dump(chunk)
Print "  channels    " + Str(chunk.UInt16Value(8))
Print "  sample rate " + Str(ExtendedStrToDoubleQTX(chunk.StringValue(16, 10)))
Print "  seconds     " + Str(chunk.UInt32Value(10) / ExtendedStrToDoubleQTX(chunk.StringValue(16, 10)))

' --- Every Double comes back as it was -------------------------------------------
Dim same As Integer
Dim values() As Double = Array(0.1, -0.0, 1e308, 5e-324, 3.141592653589793, 1 / 0, -1 / 0)
For Each value As Double In values
  If ExtendedStrToDoubleQTX(DoubleToExtendedStrQTX(value)) = value Then same = same + 1
Next
Print Str(same) + " of " + Str(values.Ubound + 1) + " Doubles came back as they were."
