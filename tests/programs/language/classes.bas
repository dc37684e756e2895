' Classes: fields, properties, methods, inheritance.
Class Animal
  Property Name As String
  Private mAge As Integer = 2
  Protected legs As Integer = Legs0
  Shared Property Count As Integer
  Shared all() As Animal
  Const Legs0 = 4
  Const Kingdom = "animals"
  Enum Mood
    Calm
    Wild = 7
  End Enum
  Property Temper As Mood = Mood.Wild
  Sub Constructor(name As String)
    Self.Name = name
    Count += 1
  End Sub
  Sub Constructor(name As String, age As Integer)
    Constructor(name)
    mAge = age
  End Sub
  Sub Destructor()
    Print "bye " + Name
  End Sub
  Property Age As Integer
    Get
      Return mAge
    End Get
    Set
      If value < 0 Then Raise New OutOfBoundsException("too young")
      mAge = value
    End Set
  End Property
  Property Title As String
    Get
      Return Kind + " " + Name
    End Get
  End Property
  Property Secret As Integer
    Set(given As Integer)
      mAge = given * 100
    End Set
  End Property
  Shared Property Half As Double
    Get
      Return Count / 2
    End Get
    Set
      Count = value * 2
    End Set
  End Property
  Function Kind() As String
    Return "animal"
  End Function
  Sub Show()
    Print Title + " aged " + Str(Age)
  End Sub
  Shared Function Made(name As String) As Animal
    Return New Animal(name)
  End Function
  Function Older(other As Animal) As Boolean
    Return mAge > other.mAge
  End Function
  Static Function CountText() As String
    Return "made: " + Str(Count)
  End Function
End Class

Class Dog
  Inherits Animal
  Function Kind() As String
    Return "dog, an " + Super.Kind
  End Function
  Function LegCount() As Integer
    Return legs
  End Function
  Property Age As Integer
    Get
      Return Super.Age * 7
    End Get
    Set
      Super.Age = value
    End Set
  End Property
  Sub Destructor()
    Print "a dog says:"
  End Sub
  Sub Rename(to1 As String)
    Super.Name = to1
    Me.Show
  End Sub
End Class

Class Puppy Inherits Dog
  Property toys() As String
  Property friends(2) As Animal
  Sub Constructor()
    Super.Constructor("puppy", 1)
    toys.Append("ball")
    friends(0) = Self
    friends(0) = Nil
  End Sub
  Function Kind() As String
    Return "young " + Super.Kind
  End Function
End Class

Class Plain
  Dim x, y, z As Integer
End Class

Dim a As New Animal("cat")
Dim d As Animal = New Dog("rex", 3)
a.Show
d.Show
d.Age = 4
d.Age += 1
d.Show
d.Secret = 1
Print d.Age
Print d IsA Dog
Print a IsA Dog
Print Dog(d).LegCount
Dog(d).Rename("max")
Print Animal.Count
Animal.Half = 5
Print Animal.Half
Print Animal.CountText + Animal.Kingdom
Print a.CountText
Print a.Count
Print Animal.Mood.Wild + a.Temper
Print Animal.Made("fox").Name
Dim p As New Puppy
p.Show
Print p.toys(0) + Str(p.friends.LastIndex)
Print a.Older(p)
Animal.all.Append(a)
Print Animal.all(0).Name
Animal.all.RemoveAll

' Objects go everywhere that others go.
Dim v As Variant = p
Print Animal(v).Name
Dim o As Object = p
Print Puppy(o).Kind
Dim list() As Animal = Array(a, d, p)
For Each one As Animal In list
  one.Name += "!"
Next
Print a.Name + d.Name + p.Name
list.RemoveAll
Try
  Print Dog(a).Name
Catch e As TypeMismatchException
  Print e.Message
End Try
Try
  a.Age = -1
Catch e As OutOfBoundsException
  Print e.Message
End Try
Dim none As Animal
Try
  Print none.Name
Catch e As NilObjectException
  Print e.Message
End Try
Try
  none.Name = "x"
Catch e As NilObjectException
  Print e.Message
End Try
Try
  none.Show
Catch e As NilObjectException
  Print e.Message
End Try
Try
  Print d.Secret
Catch e As UnsupportedOperationException
  Print e.Message
End Try
Function Renamed(ByRef which As Animal) As String
  which = New Animal("new")
  Return "changed "
End Function
Sub Changed()
  Dim local As New Animal("old")
  local.Name += Renamed(local)
  Print local.Name
  Print local.Older(New Animal("young", 1))
End Sub
Changed
a = Nil
d = Nil
p = Nil
o = Nil
v = Nil
Print "end"

Class Problem
  Inherits RuntimeException
  Property Where As String
  Sub Constructor(where As String)
    Super.Constructor("a problem", 5)
    Self.Where = where
  End Sub
End Class
Try
  Raise New Problem("here")
Catch e As Problem
  Print e.Message + " " + e.Where + " " + Str(e.ErrorNumber)
End Try
