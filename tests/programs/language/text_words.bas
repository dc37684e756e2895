' Words about texts, as functions and as members, at their borders too.
Dim s As String = "Ümläut, naïve Ümläut"
Print Str(s.IndexOf("ml")) + " " + Str(s.IndexOf("ÜM")) + " " + Str(s.IndexOf(1, "Ü")) + " " + Str(s.IndexOf("x")) + " " + Str(s.IndexOf(99, "a")) + " " + Str(s.IndexOf(-5, "n"))
Print Str(s.LastIndexOf("ML")) + " " + Str(s.LastIndexOf("x")) + " " + Str("".IndexOf("")) + " " + Str("".IndexOf("a")) + " " + Str(s.IndexOf(""))
Print Str(InStr(s, "NA")) + " " + Str(InStr(3, s, "Ü")) + " " + Str(s.InStr(16, "Ü")) + " " + Str(InStr(-1, s, "m")) + " " + Str(InStr(99, s, "m"))
Print Str(s.Contains("NAÏ")) + " " + Str(s.Contains("naïv")) + " " + Str(s.Contains("")) + " " + Str("".Contains("a"))
Print Str(s.BeginsWith("ÜML")) + " " + Str(s.BeginsWith("ml")) + " " + Str(s.BeginsWith("")) + " " + Str(s.EndsWith("LÄUT")) + " " + Str(s.EndsWith("läuT")) + " " + Str("a".EndsWith("aa"))
Print s.Middle(1, 3) + "|" + s.Middle(8) + "|" + s.Middle(-2, 2) + "|" + s.Middle(99) + "|" + s.Middle(2, -1) + "|" + s.Mid(2, 3) + "|" + s.Left(2) + "|" + s.Right(3)
Print s.Replace("ml", "ML") + " " + s.ReplaceAll("ML", "") + " " + s.Replace("x", "y") + " " + s.Replace("", "y") + " " + "aaa".Replace("A", "bb") + " " + "aaa".ReplaceAll("A", "bb")
Print "[" + "  x ".LTrim + "][" + "  x ".RTrim + "][" + "  x ".Trim + "][" + "  ".LTrim + "][" + "  ".RTrim + "][" + " é ".TrimLeft + "][" + " é ".TrimRight + "][" + "".Trim + "]"
Print "hELLO wORLD, it's o'neil's 3rd élan".Titlecase + "[" + "".Titlecase + "]" + "x".Titlecase
Print "aZé".Uppercase + "aZÉ".Lowercase

' Fields.
Dim list As String = "a,b,,Ü,"
Print Str(list.CountFields(",")) + " " + Str("".CountFields(",")) + " " + Str("x".CountFields(",")) + " " + Str(CountFields("aXbxc", "x")) + " " + Str(",".CountFields(","))
For i As Integer = -1 To 6
  Print Str(i) + ":" + list.NthField(",", i) + ";" + NthField("one--two", "--", i)
Next
Print Join(list.Split(","), "|") + " " + Join(Split("a bc  d"), "|") + " " + Join("né!".Split(""), "|") + " " + Str("".Split("").Count) + " " + Join("1-2".ToArray("-"), "|")
Dim least As Integer = -9223372036854775807 - 1
Print "[" + "a,b".NthField(",", least) + "]" + Str("ab".IndexOf(least, "b")) + Str(InStr(least, "ab", "b")) + "ab".Middle(least, 1)
Print "né!".NthField("", 2) + " " + Str("né!".CountFields(""))

' Order.
Print Str("a".Compare("B")) + Str(Compare("b", "A")) + Str("É".Compare("É")) + " " + Str(StrComp("a", "A")) + Str(StrComp("a", "A", 1)) + Str(StrComp("a", "A", 0)) + Str(StrComp("A", "a", 0)) + Str(StrComp("", "", 0))

' Texts and numbers.
Print Str("12abc".ToInteger) + " " + Str("".ToInteger) + " " + Str(" -7".ToInteger) + " " + Str("99999999999999999999".ToInteger) + " " + Str("1.9".ToInteger)
Print Str("1.5x".ToDouble) + " " + Str("".ToDouble) + " " + Str("-1e-3".ToDouble)
Print Str(Val("&hFF")) + " " + Str(Val(" &o17x")) + " " + Str(Val("&b1012")) + " " + Str(Val("&h")) + " " + Str(Val("&z1")) + " " + Str(Val("&")) + " " + Str(Val("&Hg")) + " " + Str(Val("&O8")) + " " + Str(Val("&Bff")) + " " + Str(Val("&hff"))
Dim wide As String = ConvertEncoding("Né né", Encodings.UTF16)
Print Str(wide.IndexOf("NÉ")) + " " + Str(wide.IndexOf("né")) + " " + wide.NthField(" ", 2) + " " + wide.Titlecase + " " + Str(wide.Contains("É"))

' Positions and counts without bounds; characters that are none.
Dim farRight As Integer = 9223372036854775807
Dim farLeft As Integer = -farRight - 1
Dim word As String = "héllo"
Print "[" + word.Middle(farRight) + "][" + word.Middle(farLeft, farRight) + "][" + word.Middle(1, farRight) + "][" + word.Middle(1, farLeft) + "]"
Print "[" + word.Mid(farLeft) + "][" + word.Left(farRight) + "][" + word.Left(farLeft) + "][" + word.Right(farRight) + "][" + word.Right(farLeft) + "]"
Dim broken As String = ChrB(160) + "a" + ChrB(195) + "b"
Print Str(broken.Length) + " " + Str(LenB(broken)) + " " + Str(LenB(broken.Left(1))) + " " + Str(LenB(broken.Middle(2)))
