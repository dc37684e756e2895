' What surprises is warned of in classes as it is elsewhere.
Class Meter
  Private count As New AtomicIntegerQTX
  level As UInt8 = 300
  Property Size As Integer
    Get
      If level > 0 Then Return level
    End Get
    Set
      count = count + value
    End Set
  End Property
  Function Twice() As Integer
    count += 1
  End Function
  Shared Function Of(value As Integer) As Meter
    Dim made As New Meter
    made.level = value
    Return made
  End Function
  Function Never() As Integer
    Raise New UnsupportedOperationException
  End Function
End Class
Dim m As Meter = Meter.Of(5)
m.Size = 3
Print m.Size
Print m.Twice
