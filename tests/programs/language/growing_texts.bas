' Texts that grow where they are, and what must not be seen of it.
Const Times = 200000

Class Journal
  Property Text As String
  Property Other As Journal
  Shared Property All As String
  Sub Write(line As String)
    Text = Text + line + ";"
    All += line
  End Sub
  Function Writing(line As String) As String
    Write(line)
    Return "[" + line + "]"
  End Function
End Class

Module Store
  Public Property Kept As String
End Module

Dim whole As String
Dim journal As New Journal

Function Numbered() As String
  Dim text As String
  For i As Integer = 1 To Times
    text += Str(i Mod 10)
  Next
  Return text
End Function

Sub GrowByRef(ByRef text As String, times As Integer)
  For i As Integer = 1 To times
    text = text + "r"
  Next
End Sub

Function Failing() As String
  whole = whole + "before"
  Raise New UnsupportedOperationException("not this", 1)
End Function

Function Changing(value As String) As String
  whole = value
  Return "!"
End Function

Function Replaced() As String
  journal = New Journal
  Return "new"
End Function

' Every kind of variable, far more often than copying all of it each time would allow.
For i As Integer = 1 To Times
  whole = whole + "ab" + "c"
  journal.Write("x")
  journal.Text += "y"
  journal.Text = journal.Text + "z"
  Store.Kept = Store.Kept + "k"
Next
Print Str(Len(whole)) + " " + whole.Right(4)
Print Str(Len(journal.Text)) + " " + journal.Text.Left(8) + " " + Str(Len(Journal.All))
Print Len(Store.Kept)
Dim digits As String = Numbered
Print Str(Len(digits)) + " " + digits.Right(5)
Dim r As String
GrowByRef(r, 1000)
Print Len(r)

' Who holds a text keeps it as it was.
Dim a As String = "one"
a = a + " two"
a = a + " three"
Dim b As String = a
Dim list() As String
list.Append(a)
Dim v As Variant = a
Dim d As New Dictionary
d.Value(a) = a
a = a + " four"
a += " five"
Print a
Print b + "|" + list(0) + "|" + v.StringValue + "|" + d.Value("one two three").StringValue
b += " more"
Print b + "|" + list(0)

' The text itself among what is added.
a = "ab"
a += "c"
a = a + "d"
a = a + a
a += a
a = a + a + a
Print a
a = "x" + a.Left(2)
Print a

' What is added changes the variable meanwhile: what was read before counts.
whole = "old"
whole += " text"
whole = whole + Changing("new")
Print whole
whole += Changing("newer") + Changing("newest")
Print whole
journal.Text = "j"
journal.Text += "k"
journal.Text = journal.Text + journal.Writing("w")
Print journal.Text
journal.Text += journal.Writing("v")
Print journal.Text

' The object itself is another one meanwhile: an assignment finds it at the end, += at the beginning.
Dim before As Journal = journal
journal.Text = "a"
journal.Text = journal.Text + Replaced
Print before.Text + " " + journal.Text
before = journal
journal.Text += Replaced
Print before.Text + " " + journal.Text + "."

' What is added cannot be computed: the variable stays as it was, but for what that has done itself.
whole = "safe"
whole += "."
Try
  whole = whole + Failing
Catch e As UnsupportedOperationException
  Print whole + " " + e.Message
End Try
Try
  whole += "x" + Failing
Catch e As UnsupportedOperationException
  Print whole + " " + e.Message
End Try
Dim nobody As Journal
Try
  nobody.Text = nobody.Text + "x"
Catch e As NilObjectException
  Print e.Message
End Try
Try
  nobody.Text += "x"
Catch e As NilObjectException
  Print e.Message
End Try

' Encodings that differ make it UTF-8.
Dim mixed As String = ConvertEncoding("gr" + Chr(252), Encodings.ISOLatin1)
mixed = mixed + ConvertEncoding("n", Encodings.ISOLatin1)
Print Str(LenB(mixed))
mixed = mixed + ConvertEncoding("er", Encodings.ISOLatin1)
Print Str(LenB(mixed))
mixed = mixed + " T" + Chr(252) + "r"
Print Str(LenB(mixed)) + " " + mixed
mixed += ConvertEncoding(Chr(228), Encodings.ISOLatin1)
Print mixed

' Nothing is something to add, and to be added to.
Dim none As String
none = none + ""
none += none
Print Len(none)
none = none + "some"
none = none + ""
none += ""
Print none

' Too long: refused, and the text is as it was.
Dim long As String = "0123456789abcdef"
For i As Integer = 1 To 24
  long = long + long
Next
Try
  long = long + "x"
Catch e As OutOfMemoryException
  Print Str(LenB(long)) + " " + e.Message
End Try
long = "0123456789abcdef"
For i As Integer = 1 To 23
  long += long
Next
Print LenB(long)
long += long.LeftB(100000000)
Try
  long += long
Catch e As OutOfMemoryException
  Print Str(LenB(long)) + " " + e.Message
End Try
