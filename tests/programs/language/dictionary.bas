' Dictionary: keys of any type, in the order in which they came.
Dim d As New Dictionary
Print Str(d.Count) + " " + Str(d.HasKey("a")) + " " + Str(d.Lookup("a", "none")) + " " + Str(d.Keys.Count) + " " + Str(d.Values.Count)
d.Value("a") = 1
d("Ü") = "two"
d(3) = Array(1, 2)
d(Nil) = 4.5
d("A") = 5  // the same key as "a"
Print Str(d.KeyCount) + " " + Str(d("A")) + " " + d.Value("Ü") + " " + Str(d.HasKey("ü")) + " " + Str(d(Nil))
For Each key As Variant In d.Keys
  Print "key " + Str(key)
Next
For i As Integer = 0 To d.KeyCount - 1
  Print Str(i) + " " + Str(d.Key(i)) + " " + Str(VarType(d.Value(d.Key(i))))
Next
d.Value("a") += 10
Print d("a")
Dim numbers() As Integer = d(3)
Print numbers(1)

' Numbers are alike by what they are, whatever their type; texts, Booleans and objects are other keys.
Dim n As New Dictionary
n(1) = "one"
Dim single1 As Single = 1
Dim price As Currency = 1
Dim word As UInt64 = 1
Print n(1.0) + n(single1) + n(price) + n(word)
Print Str(n.HasKey("1")) + " " + Str(n.HasKey(True)) + " " + Str(n.HasKey(-1)) + " " + Str(n.HasKey(1.5)) + " " + Str(n.HasKey(Nil))
n(True) = "true"
n("1") = "text"
n(0 / 0) = "nan"
n(-0.0) = "zero"
n(-1) = "minus"
n(18446744073709551615) = "most"
n(-9223372036854775807 - 1) = "least"
n(1 / 0) = "infinite"
n(-1 / 0) = "minus infinite"
n(0.1) = "tenth"
price = 0.1
word = 18446744073709551615
Print n(True) + " " + n("1") + " " + n(0 / 0) + " " + n(0) + " " + n(-1.0) + " " + n(word) + " " + n(-9223372036854775808.0) + " " + n(1 / 0) + " " + n(-1 / 0) + " " + n(price)
Dim x As New CriticalSection
Dim y As New CriticalSection
Dim m As New MemoryBlock(1)
Dim p As Ptr = m
Dim list() As Integer = Array(1)
n(x) = "x"
n(y) = "y"
n(p) = "p"
n(list) = "list"
Print n(x) + n(y) + n(p) + n(list) + Str(n.HasKey(Array(1))) + Str(n.HasKey(m)) + " " + Str(n.Count)

' What is not there.
Try
  Print d("missing")
Catch e As KeyNotFoundException
  Print e.Message
End Try
Try
  d.Remove(99)
Catch e As RuntimeException
  Print e.Message
End Try
For Each i As Integer In Array(-1, 5)
  Try
    Print d.Key(i)
  Catch e As OutOfBoundsException
    Print e.Message
  End Try
Next

' Removing keeps the order of the others.
Dim many As New Dictionary
For i As Integer = 0 To 99
  many(i) = i * i
Next
For i As Integer = 0 To 99
  If i Mod 7 <> 0 Then many.Remove(i)
Next
Dim left As String
For i As Integer = 0 To many.Count - 1
  left = left + " " + Str(many.Key(i)) + ":" + Str(many.Value(many.Key(i)))
Next
Print Str(many.Count) + left
many.Remove(98)
many(98) = "anew"
many.Remove(0)
many(1.5) = "last"
Dim keys() As String
For Each key As Variant In many.Keys
  keys.Append(key.StringValue)
Next
Print Join(keys, " ") + " " + many.Key(0)

' A copy holds the same, and goes its own way; each New makes another.
Dim copied As Dictionary = many.Clone
copied(7) = "changed"
Print Str(copied.Count) + " " + Str(many(7)) + " " + copied(7)
many.RemoveAll
Print Str(many.Count) + " " + Str(many.HasKey(7)) + " " + Str(copied.HasKey(7))
copied.Clear
Print copied.Count
Dim held As Variant = d
Print Str(held.Type = Variant.TypeObject) + " " + Dictionary(held).Value("Ü")
Dim none As Dictionary
Try
  none("a") = 1
Catch e As NilObjectException
  Print "Nil"
End Try

' Dictionaries in each other, and a class that is one.
Dim outer As New Dictionary
Dim inner As New Dictionary
inner("deep") = "found"
outer("inner") = inner
Print Dictionary(outer("inner")).Value("deep")
For i As Integer = 1 To 3000
  Dim next1 As New Dictionary
  next1("before") = outer
  outer = next1
Next
Print outer.HasKey("before")
Class Counts
  Inherits Dictionary
  Sub Add(key As Variant)
    Self.Value(key) = Self.Lookup(key, 0) + 1
  End Sub
End Class
Dim counts As New Counts
For Each letter As String In "banana".Split("")
  counts.Add(letter)
Next
Print Str(counts("a")) + Str(counts("b")) + Str(counts("n"))

' What is given back may run a program's own code.
Class Noisy
  Sub Destructor()
    Print "gone"
  End Sub
End Class
Dim things As New Dictionary
things("a") = New Noisy
things("a") = 1
things("b") = New Noisy
things.Remove("b")
things("c") = New Noisy
things.RemoveAll
things(New Noisy) = 1
things = Nil
