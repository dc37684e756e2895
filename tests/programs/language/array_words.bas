' What is done with arrays as a whole.
Sub Show(a() As Double)
  Dim parts() As String
  For Each x As Double In a
    parts.Add(Str(x))
  Next
  Print Join(parts, " ")
End Sub
Dim nan As Double = 0 / 0
Dim d() As Double = Array(3.0, nan, -1, 1 / 0, -1 / 0, nan, 0, 2.5)
d.Sort
Show(d)
Dim none() As Double
none.Sort
none.Shuffle
Print none.IndexOf(1)
Dim i() As Integer = Array(5, -2, 9, 0, -2)
i.Sort
Print Str(i(0)) + Str(i(1)) + Str(i(2)) + Str(i(3)) + Str(i(4)) + " " + Str(i.IndexOf(-2)) + " " + Str(i.IndexOf(-2, 1)) + " " + Str(i.IndexOf(-2, 2)) + " " + Str(i.IndexOf(9, -5)) + " " + Str(i.IndexOf(9, 99)) + " " + Str(i.Contains(0)) + " " + Str(i.Contains(1))
Dim w() As UInt64
w.Add(18446744073709551615)
w.Add(1)
w.Sort
Print w(1)
Dim f(2) As Single
f(0) = 2
f(1) = nan
f(2) = -1
f.Sort
Print Str(f(0)) + " " + Str(f(1)) + " " + Str(f(2)) + " " + Str(f.IndexOf(-1)) + Str(f.IndexOf(nan)) + Str(d.IndexOf(nan)) + Str(d.IndexOf(2.5))
Dim c() As Currency
c.Add(1.5)
c.Add(-0.25)
c.Sort
Print c(0)
Dim b() As Boolean = Array(True, False, True)
b.Sort
Print Str(b(0)) + Str(b(1))

' Texts by characters, but for the case of A to Z; those that are alike keep their order.
Dim s() As String = Array("b", "Ä", "B", "", "a", "A", "é", "ab")
s.Sort
Print Join(s, "|") + " " + Str(s.IndexOf("AB")) + " " + Str(s.IndexOf("É")) + " " + Str(s.IndexOf("")) + " " + Str(s.Contains("Ä"))

' Variants: Nil, numbers, NaN, texts.
Dim v() As Variant
v.Add("b")
v.Add(2)
v.Add(nan)
v.Add(Nil)
v.Add("A")
v.Add(1.5)
v.Add(True)
v.Add(18446744073709551615)
v.Add(9007199254740993)
v.Add(9007199254740992.0)
v.Add(-9223372036854775807)
v.Add(9223372036854775807)
v.Add("a")
v.Sort
Dim shown() As String
For Each each1 As Variant In v
  shown.Add("<" + Str(each1) + ">")
Next
Print Join(shown, "")
Print Str(v.IndexOf("B")) + " " + Str(v.IndexOf(1.5)) + " " + Str(v.IndexOf(2.0)) + " " + Str(v.IndexOf("none")) + " " + Str(v.IndexOf(Nil))
Dim lock As New CriticalSection
v.Add(lock)
Print Str(v.IndexOf(lock)) + " " + Str(v.IndexOf(New CriticalSection)) + " " + Str(v.IndexOf("c"))
Try
  v.Sort
Catch e As TypeMismatchException
  Print e.Message
End Try
Print v(13) Is lock
Dim locks() As CriticalSection
locks.Add(New CriticalSection)
locks.Add(lock)
Print Str(locks.IndexOf(lock)) + " " + Str(locks.IndexOf(Nil)) + " " + Str(locks.Contains(lock))

' Size.
i.ResizeTo(6)
Print Str(i.LastRowIndex) + " " + Str(i(6)) + " " + Str(i.Count)
i.ResizeTo(-1)
Print i.LastIndex
Try
  i.ResizeTo(-2)
Catch e As OutOfBoundsException
  Print e.Message
End Try
i.AddRow(3)
i.AddRowAt(0, 2)
i.AddAt(0, 1)
i.RemoveRowAt(1)
Print Str(i(0)) + Str(i(1)) + Str(i.Pop) + Str(i.Count)
i.RemoveAllRows
Print i.Count
Try
  Print i.Pop
Catch e As OutOfBoundsException
  Print e.Message
End Try
Try
  i.RemoveAt(0)
Catch e As OutOfBoundsException
  Print e.Message
End Try

' To shuffle changes the order alone.
Dim numbers(99) As Integer
Dim texts(99) As String
For n As Integer = 0 To 99
  numbers(n) = n
  texts(n) = Format(n, "00")
Next
numbers.Shuffle
texts.Shuffle
Dim moved As Boolean
For n As Integer = 0 To 99
  moved = moved Or numbers(n) <> n
Next
numbers.Sort
texts.Sort
Dim wrong As Integer
For n As Integer = 0 To 99
  If numbers(n) <> n Or texts(n) <> Format(n, "00") Then wrong += 1
Next
Print Str(moved) + " " + Str(wrong)
Dim missing() As String = Nil
For n As Integer = 1 To 3
  Try
    If n = 1 Then missing.Sort
    If n = 2 Then missing.Shuffle
    If n = 3 Then Print missing.IndexOf("a")
  Catch e As NilObjectException
    Print e.Message
  End Try
Next
Print String.FromArray(Array("a", "b"), "-") + " " + Str(Integer.FromString("5") + Double.FromString("0.5"))
