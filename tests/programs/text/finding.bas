Print InStr("Hello World", "world"), InStr("abc", "x"), InStr(5, "abcabc", "b") ' expect: 7 0 5
Print InStr("Grüße", "SS"), InStr("aßb", "B") ' expect: 0 3
Print Replace("a-b-c", "-", "+"), ReplaceAll("a-b-c", "-", ", ") ' expect: a+b-c a, b, c
Print ReplaceAll("aaa", "A", "b"), ReplaceAll("abc", "", "x") ' expect: bbb abc
Print Contains("abc", "B"), BeginsWith("Disc", "di"), EndsWith("Disc", "SC"), EndsWith("a", "abc") ' expect: True True True False
Print "ÄPFEL" = "äpfel", StrComp("a", "A", 0), StrComp("a", "A", 1) ' expect: True 1 0
