' Threads race for everything that they can share. Each operation has one of its outcomes, so nothing that is counted
' here depends on who is first.
Dim numbers() As Integer
Dim texts() As String
Dim values() As Variant
Dim shared As String = "0"
Dim anything As Variant = 0
Dim problem As New RuntimeException("0", 0)
Dim memory As New MemoryBlock(8)
Dim strange As New AtomicIntegerQTX
Dim outside As New AtomicIntegerQTX
Const Rounds = 3000

Sub Expect(holds As Boolean)
  If Not holds Then strange.Increment
End Sub

' Grows, shrinks and moves the arrays.
Sub Change(t As Thread)
  For i As Integer = 1 To Rounds
    Try
      numbers.Append(7)
      texts.Append("seven")
      values.Append(i)
      If i Mod 3 = 0 Then
        numbers.Insert(0, 7)
        texts.Insert(1, "seven")
        values.Insert(0, "text")
        numbers.Remove(1)
        texts.Remove(0)
        Expect texts.Pop = "seven"
        Dim last As Variant = values.Pop
      End If
      If i Mod 500 = 0 Then
        numbers.RemoveAll
        texts.RemoveAll
        values.RemoveAll
      End If
    Catch e As OutOfBoundsException
      outside.Increment
    End Try
  Next
End Sub

' Reads and replaces elements.
Sub Use(t As Thread)
  For i As Integer = 1 To Rounds
    Try
      Expect numbers(0) = 7
      Expect texts(0) = "seven"
      Dim v As Variant = values(0)
      numbers(1) = 7
      texts(1) = "seven"
      values(1) = texts(0)
      For Each number As Integer In numbers
        Expect number = 7
        If i Mod 50 <> 0 Then Exit For
      Next
      If i Mod 500 = 0 Then
        Dim joined As String = Join(texts, "")
        Expect joined = "" Or joined.Left(5) = "seven"
      End If
    Catch e As OutOfBoundsException
      outside.Increment
    End Try
  Next
End Sub

' Variables, and what objects hold.
Sub Replace(t As Thread)
  For i As Integer = 1 To Rounds
    Dim text As String = Str(i Mod 10)
    shared = text
    Expect Len(shared) = 1
    anything = i
    anything = text
    Dim held As Variant = anything
    problem.Message = text
    Expect Len(problem.Message) = 1
    problem.ErrorNumber = i
    memory.Size = 8 + i Mod 64
    memory.Int64Value(0) = 7
    Expect memory.Int64Value(0) = 7
  Next
End Sub

Dim threads() As Thread
For i As Integer = 1 To 2
  Dim changes As New Thread
  AddHandler changes.Run, AddressOf Change
  threads.Append(changes)
  Dim uses As New Thread
  AddHandler uses.Run, AddressOf Use
  threads.Append(uses)
  Dim replaces As New Thread
  AddHandler replaces.Run, AddressOf Replace
  threads.Append(replaces)
Next
For Each t As Thread In threads
  t.Start
Next
For Each t As Thread In threads
  t.Join
Next
Print strange.Value

' Every one of so many appended elements is there, and every thread's own element has its last value.
Dim all() As Integer
Dim names() As String
Dim own(3) As Integer
Dim nextOwn As New AtomicIntegerQTX
Sub Fill(t As Thread)
  Dim mine As Integer = nextOwn.Add(1)
  For i As Integer = 1 To Rounds
    all.Append(i)
    names.Append("n")
    own(mine Mod 4) = own(mine Mod 4) + 1
  Next
End Sub
Dim fillers(3) As Thread
For i As Integer = 0 To 3
  fillers(i) = New Thread
  AddHandler fillers(i).Run, AddressOf Fill
  fillers(i).Start
Next
For Each t As Thread In fillers
  t.Join
Next
Dim sum As Integer
For Each number As Integer In all
  sum = sum + number
Next
Print sum = 4 * Rounds * (Rounds + 1) / 2
Print names.Count = 4 * Rounds
Print Len(Join(names, "")) = 4 * Rounds
For Each count As Integer In own
  Print count = Rounds
Next
