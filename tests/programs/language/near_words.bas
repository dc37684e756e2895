' Names that are nearly words of the language mean what the program says.
Enum Kind
  Nexd
  Wen
  Tre
End Enum
Sub Pint(s As String)
  Print s
End Sub
Sub Don()
  Print "done"
End Sub
Class Fore
  Inherits AtomicQueueQTX
  Whil As Integer = 1
  Nex, Dimm As Integer
  Private Fro(1) As Integer
  Sub Loo()
    Push "a"
    Insert "b"
    Print Str(Count + Whil + Nex + Fro(0))
    Clear
    Endd
  End Sub
  Private Sub Endd()
    Print Count
  End Sub
End Class
Interface Tri
  Sub Loo()
End Interface
Dim f As New Fore
f.Loo
Pint "pint"
Pint("again")
Don
Call Don
Dim prin As Integer = Kind.Wen
prin = prin + 1
prin += 1
Print prin
