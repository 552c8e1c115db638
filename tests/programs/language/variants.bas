Dim v As Variant
Print v = Nil, VarType(v) ' expect: True 0
v = 5
Print VarType(v), v + 1, v & "x" ' expect: 2 6 5x
v = "12"
Print VarType(v) ' expect: 8
Dim n As Integer = v
Print n ' expect: 12
v = 2.5
Print VarType(v), v * 2 ' expect: 5 5
v = True
Print VarType(v), Not v ' expect: 11 False
v = New Dictionary
Print VarType(v), v.Count, v IsA Dictionary ' expect: 9 0 True
v.Value("k") = 3
Print v.Value("k") ' expect: 3
Dim d As Dictionary = v
Print d.Count ' expect: 1
v = 7
Print v.IntegerValue, v.StringValue, v.DoubleValue ' expect: 7 7 7
