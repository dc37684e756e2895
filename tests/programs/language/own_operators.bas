' Operators and conversions of one's own.
Class Vec
  Dim x As Double
  Dim y As Double
  Sub Constructor(x As Double = 0, y As Double = 0)
    Self.x = x
    Self.y = y
  End Sub
  Function Operator_Add(o As Vec) As Vec
    Return New Vec(x + o.x, y + o.y)
  End Function
  Function Operator_Subtract(o As Vec) As Vec
    Return New Vec(x - o.x, y - o.y)
  End Function
  Function Operator_Multiply(k As Double) As Vec
    Return New Vec(x * k, y * k)
  End Function
  Function Operator_MultiplyRight(k As Double) As Vec
    Return Self * k
  End Function
  Function Operator_Negate() As Vec
    Return Self * -1
  End Function
  Function Operator_Convert() As String
    Return "(" + Str(x) + ", " + Str(y) + ")"
  End Function
  Sub Operator_Convert(both As Double)
    x = both
    y = both
  End Sub
  Sub Operator_Convert(text As String)
    x = Val(text)
    y = -x
  End Sub
  Function Operator_Compare(o As Vec) As Integer
    If x < o.x Then Return -1
    If x > o.x Then Return 1
    Return 0
  End Function
  Function Operator_Subscript(i As Integer) As Double
    Return If(i = 0, x, y)
  End Function
  Sub Operator_Subscript(i As Integer, Assigns value As Double)
    If i = 0 Then
      x = value
    Else
      y = value
    End If
  End Sub
  Sub Length(Assigns value As Double)
    x = value
    y = 0
  End Sub
  Function Part(name As String) As Double
    Return If(name = "x", x, y)
  End Function
  Sub Part(name As String, Assigns value As Double)
    Print "sets " + name
    If name = "x" Then x = value
  End Sub
End Class

Dim v As New Vec(1, 2)
Dim w As Vec = v + v * 3
Print w
Print 2 * w - v
Print -w
w(0) = 50
w(1) += 7
Print w
Print w(0)
Print v < w
Print v = New Vec(1, 5)
v.Part("x") = 9
v.Part("x") += 1
Print v.Part("x")
v.Length = 4
Print v
Try
  Print v.Length
Catch e As UnsupportedOperationException
  Print e.Message
End Try
v = 3
Print v
v = "7 apples"
Print v
Dim u As Vec = 2.5
Print u
Dim text As String = u
Print text

' What a class has from one that is registered: operators, conversions, data.
Class Money
  Inherits Int128QTX
  Property Unit As String = "EUR"
  Function Text() As String
    Return Str(Self) + " " + Unit
  End Function
End Class
Dim m As Money = 5
Print m.Text
Dim more As Int128QTX = m * 2 + 1
Print more
Print m > 4
Class Counter
  Inherits AtomicIntegerQTX
  Property Name As String = "count"
  Sub Twice()
    Increment
    Self.Increment
  End Sub
  Sub Destructor()
    Print Name + " ends at " + Str(Value)
  End Sub
End Class
Dim k As New Counter
k.Twice
Print k.Value
k = 41
k.Increment
Print k.Value
Dim plain As AtomicIntegerQTX = k
Print plain IsA Counter
Print Counter(plain).Name
plain = Nil
k = Nil
Class Named
  Inherits Thread
  Property Result As Integer
  Sub Constructor()
    AddHandler Self.Run, AddressOf Body
  End Sub
  Shared Sub Body(t As Thread)
    Named(t).Result = 42
  End Sub
End Class
Dim t As New Named
t.Start
t.Join
Print t.Result
Class Note
  Inherits MemoryBlock
  Function First() As Integer
    Return UInt8Value(0)
  End Function
End Class
Dim block As New Note(4)
block.UInt8Value(0) = 65
Print block.First
