' Constants are expressions of literals and other constants.
Const Lowest As Integer = -9223372036854775807 - 1
Const Minutes = 5 * 60 + 2
Const Both = "a" + "b"
Const Never = Not True
Const Quarter = Minutes / 4
Const Longer As String = Both + "c"
Print Lowest
Print Minutes
Print Both
Print Never
Print Quarter
Print Longer

Sub Show(n As Integer = 2 * 3 - 7, s As String = "x" + "y", o As Object = Nil)
  Print n
  Print s
  Print o Is Nil
  Print Minutes
End Sub
Show
Show(Minutes, Longer)
