' Declarations: several names, values, types that come from the value.
Dim a, b As Integer = 7
Print a + b ' expect: 14
Var text As String
Print "[" + text + "]" ' expect: []
Var x = 3
Var y = 2.5
Var z = "text"
Print x * 2, y * 2, z + "s" ' expect: 6 5 texts
Dim flag As Boolean
Print flag ' expect: False
Dim thing As Object
Print thing Is Nil ' expect: True
Const Limit = 10
Const Name As String = "disc"
Print Limit * 2, Name ' expect: 20 disc
Const Double = Limit * 2 + 1
Print Double ' expect: 21
A = 1
Print a ' expect: 1
