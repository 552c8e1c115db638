Dim d As New Dictionary
d.Value("one") = 1
d.Value(2) = "two"
d.Value("list") = Array(1, 2, 3)
Print d.Count, d.HasKey("ONE"), d.HasKey("x") ' expect: 3 True False
Print d.Value("one") + 1 ' expect: 2
Print d.Value(2) ' expect: two
Print d.Lookup("x", "default") ' expect: default
Dim list As Variant = d.Value("list")
Print list(1) ' expect: 2
For Each key As Variant In d.Keys
    Print key
Next
' expect: one
' expect: 2
' expect: list
d.Remove("one")
Print d.Count ' expect: 2
d.Clear
Print d.Count ' expect: 0
Dim text As String = d.Lookup("a", 12)
Print text ' expect: 12
