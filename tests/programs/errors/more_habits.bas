' exit: 1
' More words and signs of other languages.
Class A
  Property X As Integer
  Sub New(x As Integer)
  End Sub
  Sub Set(x As Integer)
    this.X = x
  End Sub
End Class
Class B Extends A
End Class
Function F(x As Integer) As Integer {
  Return x
}
End Function
Print 1 << 4
Print 256 >> 4
Print("a", "b")
Dim digits As String = "5"
Dim n As Integer = digits
Dim s As String = n
count = 5
Console.WriteLine("x")
Import Everything
Dim long1 As Long
Dim f1 As Float
Dim d1 As Decimal
Dim b1 As Bool
Dim l1 As New List
Dim h1 As New HashMap
Dim i1 As Int128
Dim t As New Thread
t.Run = AddressOf F
/* a comment */
