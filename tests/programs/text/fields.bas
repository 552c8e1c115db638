Print NthField("a,b,c", ",", 2), CountFields("a,b,c", ",") ' expect: b 3
Print "[" + NthField("a,b", ",", 5) + "]", CountFields("", ","), CountFields("a", ",") ' expect: [] 0 1
Dim parts() As String = Split("one two three")
Print Ubound(parts), parts(2) ' expect: 2 three
parts = Split("1;2;;3", ";")
Print parts.Count, Join(parts, "|") ' expect: 4 1|2||3
Print Join(Split("abc", ""), "-") ' expect: a-b-c
Print "x y".Split.Join("+") ' expect: x+y
