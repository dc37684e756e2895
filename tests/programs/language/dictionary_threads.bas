' Threads that share a Dictionary: each step is whole.
Dim shared1 As New Dictionary
Dim surprises As New AtomicIntegerQTX
Dim numbers() As Integer
Dim names() As String

Sub Work(t As Thread)
  For i As Integer = 1 To 200
    shared1.Value(i Mod 20) = "value " + Str(i)
    Dim found As Variant = shared1.Lookup(i Mod 7, "none")
    If found.StringValue <> "none" And Not found.StringValue.BeginsWith("value") Then Call surprises.Increment
    For Each key As Variant In shared1.Keys
      If key < 0 Or key > 20 Then Call surprises.Increment
    Next
    Try
      shared1.Remove(i Mod 13)
    Catch e As KeyNotFoundException
    End Try
    Try
      If shared1.Key(i Mod 5) > 20 Then Call surprises.Increment
    Catch e As OutOfBoundsException
    End Try
    If i Mod 50 = 0 Then
      If shared1.Clone.Count > 20 Or shared1.Values.Count > 20 Then Call surprises.Increment
    End If
    If i Mod 99 = 0 Then shared1.RemoveAll
    Dim r As Integer = System.Random.InRange(1, 3)
    If r < 1 Or r > 3 Then Call surprises.Increment
    numbers.Append(r)
    names.Append("name " + Str(r))
    If i Mod 20 = 0 Then
      numbers.Sort
      names.Sort
      numbers.Shuffle
      names.Shuffle
    End If
    If numbers.IndexOf(4) >= 0 Or names.IndexOf("NAME 4") >= 0 Then Call surprises.Increment
  Next
End Sub

Dim threads(3) As Thread
For i As Integer = 0 To 3
  threads(i) = New Thread
  AddHandler threads(i).Run, AddressOf Work
  threads(i).Start
Next
For Each t As Thread In threads
  t.Join
Next
Print Str(surprises.Value) + " " + Str(numbers.Count) + " " + Str(names.Count)
numbers.Sort
names.Sort
Print Str(numbers(0)) + Str(numbers(799)) + " " + names(0) + " " + names(799)
