' Print shows its values with a blank between them.
Print "one line" ' expect: one line
Print 1, "two", 3.5 ' expect: 1 two 3.5
Print ' expect:
Print ("in parentheses") ' expect: in parentheses
Print (1 + 2) * 3 ' expect: 9
Print -1 ' expect: -1
Print True, False ' expect: True False
Print "a ""quoted"" word" ' expect: a "quoted" word
PRINT "any case" ' expect: any case
Print ("in parentheses").Left(2) ' expect: in
Dim names() As String = Array("a", "b")
Print (names)(1), (names(0)) ' expect: b a
