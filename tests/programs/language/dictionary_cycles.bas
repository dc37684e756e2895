' Dictionaries that hold each other: they never end, and are listed with --leaks, but are no leaks.
Dim a As New Dictionary
Dim b As New Dictionary
a("next") = b
b(a) = "text"
b("list") = Array(a, b)
b.Remove("list")
b("removed") = 1
b.Remove("removed")
Print a.Count + b.Count
