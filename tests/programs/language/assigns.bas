Class Store
    Private values As New Dictionary
    Sub Item(key As String, Assigns value As Integer)
        values.Value(key) = value
    End Sub
    Function Item(key As String) As Integer
        Return values.Value(key).IntegerValue
    End Function
End Class
Dim s As New Store
s.Item("a") = 5
s.Item("a") += 2
Print s.Item("a") ' expect: 7
Dim stored As Integer
Sub Setting(Assigns value As Integer)
    stored = value * 2
End Sub
Setting() = 4
Print stored ' expect: 8
