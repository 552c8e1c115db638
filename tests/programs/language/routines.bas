Sub Greet(name As String, Optional greeting As String = "Hello")
    Print greeting + ", " + name
End Sub
Greet "Ann" ' expect: Hello, Ann
Greet("Bob", "Good day") ' expect: Good day, Bob
Call Greet("Cid") ' expect: Hello, Cid
Function Twice(n As Integer) As Integer
    Return n * 2
End Function
Print Twice(Twice(3)) ' expect: 12
Function Nothing1() As Integer
End Function
Print Nothing1 ' expect: 0
Sub Leave(early As Boolean)
    If early Then Exit Sub
    Print "stayed"
End Sub
Leave True
Leave False ' expect: stayed
Function Early() As String
    Exit Function
End Function
Print "[" + Early() + "]" ' expect: []
Function WithDefault(n As Integer = 4 * 2, text As String = "t") As String
    Return text & n
End Function
Print WithDefault(), WithDefault(1), WithDefault(1, "u") ' expect: t8 t1 u1
Sub Counter
    Static n As Integer = 5
    n = n + 1
    Print n
End Sub
Counter ' expect: 6
Counter() ' expect: 7
