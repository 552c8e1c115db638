Sub Swap(ByRef a As Integer, ByRef b As Integer)
    Dim t As Integer = a
    a = b
    b = t
End Sub
Dim x As Integer = 1
Dim y As Integer = 2
Swap x, y
Print x, y ' expect: 2 1
Dim list() As Integer = Array(5, 6)
Swap(list(0), list(1))
Print list(0), list(1) ' expect: 6 5
Class Holder
    Number As Integer = 3
End Class
Dim h As New Holder
Swap h.Number, x
Print h.Number, x ' expect: 2 3
Sub Change(ByVal n As Integer, ByRef text As String)
    n = 99
    text = text + "!"
End Sub
Dim t As String = "hi"
Change x, t
Print x, t ' expect: 3 hi!
