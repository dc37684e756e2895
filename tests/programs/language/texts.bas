' The functions of texts and numbers, at their borders too.
Dim s As String = "héllo, wörld"
Print Str(Len(s)) + " " + Str(s.Length) + " " + Str(LenB(s)) + " " + Str(s.Bytes) + " " + Str(Len(""))
Print "[" + Left(s, 2) + "][" + Left(s, -1) + "][" + Left(s, 99) + "]"
Print "[" + Right(s, 4) + "][" + Right(s, 0) + "][" + Right(s, -2) + "][" + Right(s, 99) + "]"
Print "[" + Mid(s, 8) + "][" + Mid(s, 2, 3) + "][" + Mid(s, 0, 2) + "][" + Mid(s, 50) + "][" + Mid(s, 3, -1) + "]"
Print Str(InStr(s, "w")) + " " + Str(InStr(s, "x")) + " " + Str(s.InStr("ö"))
Print ReplaceAll("a.b.c", ".", "--") + " " + ReplaceAll("aaa", "aa", "b") + " " + ReplaceAll("abc", "", "x") + " " + ReplaceAll("aa", "a", "aa")
Print "[" + Trim("  both  ") + "][" + Trim("   ") + "][" + Trim("none") + "]"
Print Uppercase("aZ9é") + Lowercase("AZ9É")
Print Join(Split("a,b,,c", ","), "|") + " " + Str(Split("a,b,,c", ",").Count) + " " + Str(Split("", ",").Count) + " " + Join(Split("a--b", "--"), "+") + " " + Join(Split("abc", ""), "+")
Dim none() As String = Nil
Print "[" + Join(none, ",") + "]"

' Characters and their codes.
For Each code As Integer In Array(65, 233, 8364, 128512)
  Print Chr(code) + " " + Str(Asc(Chr(code))) + " " + Str(LenB(Chr(code)))
Next
Print Str(Asc("")) + " " + Str(AscB("")) + " " + Str(AscB("é")) + " " + Str(AscB(ChrB(200))) + " " + Str(LenB(ChrB(200)))
For Each code As Integer In Array(-1, 1114112, 55296)
  Try
    Print Chr(code)
  Catch e As OutOfBoundsException
    Print e.Message
  End Try
Next
Print "a" + EndOfLine + "b"

' Numbers as text.
Print Hex(0) + " " + Hex(-1) + " " + Oct(64) + " " + Bin(10)
Print Str(Val(" 1e3x")) + " " + Str(CDbl("-.5")) + " " + Str(Val(""))
For Each pattern As String In Split("0;0.00;#.##;#,##0.0#;000000.0;+0.0;-0.0;0%;0.0e;0.00%;,#", ";")
  Print pattern + ": " + Format(1234.5, pattern) + " " + Format(-0.25, pattern) + " " + Format(0, pattern) + " " + Format(1e9, pattern)
Next
Print Format(0 / 0, "0.0") + " " + Format(-1 / 0, "0")
Print Str(Abs(-2.5)) + " " + Str(Min(1, 2)) + Str(Min(2, 1)) + Str(Max(1, 2)) + Str(Max(2, 1)) + " " + Str(Sqrt(2.25))
Print Str(Floor(-1.5)) + " " + Str(Ceil(-1.5)) + " " + Str(Round(2.5)) + " " + Str(Round(-2.5))
Print Microseconds > 0

' Encodings.
Dim wide As String = s.ConvertEncoding(Encodings.UTF16)
Print Str(LenB(wide)) + " " + Str(Len(wide)) + " " + Str(wide = s) + " " + Str(Encoding(wide) = Encodings.UTF16) + " " + Str(Encoding("") = Encodings.UTF8)
Print Str(Encoding(wide.Left(1)) = Encodings.UTF8) + " " + wide + "!"
Dim plain As String = "abc".ConvertEncoding(Encodings.ASCII)
Print Str(Encoding(Left(plain, 1)) = Encodings.ASCII) + " " + Str(Encoding(plain + plain) = Encodings.ASCII) + " " + Str(Encoding(plain + "x") = Encodings.UTF8) + " " + Str(Encoding("" + plain) = Encodings.ASCII) + " " + Str(Encoding(plain + "") = Encodings.ASCII) + " [" + "" + "]"
Sub ShowIn(name As String, code As Integer)
  Dim there As String = ConvertEncoding("é€z", code)
  Print name + " " + Str(LenB(there)) + " " + ConvertEncoding(there, Encodings.UTF8) + " " + there.Uppercase + " " + Str(there = ConvertEncoding("É€Z", code)) + " " + Str(Asc(there))
End Sub
ShowIn("UTF16BE", Encodings.UTF16BE)
ShowIn("UTF16LE", Encodings.UTF16LE)
ShowIn("UTF32", Encodings.UTF32)
ShowIn("UTF32BE", Encodings.UTF32BE)
ShowIn("UTF32LE", Encodings.UTF32LE)
ShowIn("ASCII", Encodings.ASCII)
ShowIn("ISOLatin1", Encodings.ISOLatin1)
ShowIn("WindowsLatin1", Encodings.WindowsLatin1)
ShowIn("MacRoman", Encodings.MacRoman)
Print "[" + ConvertEncoding("lost", 12345) + "]"
Dim bytes As String = DefineEncoding("n" + ChrB(&hE9), Encodings.ISOLatin1)
Print Str(Len(bytes)) + " " + bytes
bytes = DefineEncoding(ChrB(255), Encodings.None)
Print Str(Encoding(bytes) = Encodings.None) + " " + Str(LenB(bytes)) + " " + Str(Encoding(bytes + bytes) = Encodings.None)
