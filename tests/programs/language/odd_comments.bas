' Comments that look like texts.
Sub Show()
  Print 'hello'
  Print "this" 'is one
  Print "that" ' 'too'
  Print Len("it's") + 1 'not' 'two'
End Sub
Show
