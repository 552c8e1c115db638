Sub Fill(a() As Integer, n As Integer)
    For i As Integer = 0 To n - 1
        a.Append i * i
    Next
End Sub
Function Sum(a() As Integer) As Integer
    Dim s As Integer
    For Each n As Integer In a
        s += n
    Next
    Return s
End Function
Dim list() As Integer
Fill list, 4
Print Sum(list), Sum(Array(1, 2, 3)) ' expect: 14 6
Sub Replace1(ByRef a() As String)
    a = Array("new")
End Sub
Dim texts() As String
Replace1 texts
Print texts(0) ' expect: new
