' In a class a name is a local variable, then a member, and only then a variable of the top level.
Dim count As Integer = 100
Dim name As String = "top"
Dim other As String = "seen"

Class Counter
    Count As Integer
    Private name As String = "mine"

    Sub Add(n As Integer)
        Count = Count + n
    End Sub
    Function Told() As String
        Return name + " " + Str(count) + " " + other
    End Function
    Function Local() As String
        Dim name As String = "local"
        Return name
    End Function
End Class

Dim counter As New Counter
counter.Add(2)
counter.Add(3)
Print counter.Told       ' expect: mine 5 seen
Print counter.Local      ' expect: local
Print count              ' expect: 100
Print name               ' expect: top
