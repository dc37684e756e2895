' prints: docs/rotation.svg
' Rotation in a field of bits as a picture (SVG): eight bits from bit 4 on go
' around, all others stay.
'
'   ./qtx run examples/picture_rotation.bas > rotation.svg

Const Shown = 16
Const Offset = 4
Const Width = 8
Const Value = &b1010000111010110

Function Left(bit As Integer) As String
  Return Str(600 - 28 * bit)
End Function
Sub Text(x As String, y As Integer, anchor As String, words As String)
  Print "<text x='" + x + "' y='" + Str(y) + "' text-anchor='" + anchor + "'>" + words + "</text>"
End Sub

Print "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 690 270' font-family='sans-serif' font-size='13'>"
Print "<title>BitwiseRotateQTX with offset 4 and width 8, for several counts</title>"
Print "<style>.paper{fill:#fff}text{fill:#222}rect{stroke:#888}.paper{stroke:none}.zero{fill:#fff}.one{fill:#bbb}"
Print ".field.zero{fill:#dcebff}.field.one{fill:#06c}.field.one+text{fill:#fff}"
Print "@media(prefers-color-scheme:dark){.paper{fill:#1e2029}text{fill:#ddd}.zero{fill:#1e2029}.one{fill:#5a5e6e}"
Print ".field.zero{fill:#243a5e}.field.one{fill:#6af}.field.one+text{fill:#111}}</style>"
Print "<rect class='paper' width='690' height='270'/>"
Text("20", 28, "start", "count")
For bit As Integer = 0 To Shown - 1
  Text(Str(614 - 28 * bit), 28, "middle", Str(bit))
Next
Dim y As Integer = 40
For Each count As Integer In Array(0, 1, 2, 3, -1)
  Dim rotated As UInt64 = BitwiseRotateQTX(Value, count, Offset, Width)
  Text("20", y + 19, "start", Str(count))
  For bit As Integer = 0 To Shown - 1
    Dim isSet As Boolean = BitIsSetQTX(rotated, bit)
    Dim kind As String = If(bit >= Offset And bit < Offset + Width, "field ", "") + If(isSet, "one", "zero")
    Print "<rect class='" + kind + "' x='" + Left(bit) + "' y='" + Str(y) + "' width='28' height='28'/>"
    Text(Str(614 - 28 * bit), y + 19, "middle", If(isSet, "1", "0"))
  Next
  y = y + 38
Next
Text("404", y + 18, "middle", "bits 4 to 11 are the field; a positive count rotates toward the higher bits")
Print "</svg>"
