Print Mid("abc", -9223372036854775807 - 1, 2)
Print Mid("abc", 2)
Print ReplaceAll("banana", "an", "anan")
Print ReplaceAll("aaa", "aa", "b")
Print ReplaceAll("abc", "", "x")
Print ReplaceAll("abc", "abc", "") + "."
