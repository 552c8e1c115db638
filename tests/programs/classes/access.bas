Class Base
    Private hidden As Integer
    Protected family As Integer
    Private Sub Own()
    End Sub
    Sub Touch(other As Base)
        other.hidden = 1
    End Sub
End Class
Class Derived Inherits Base
    Sub Go()
        family = 1
        hidden = 2 ' expect parse error: 'hidden' is private to the class 'Base'.
    End Sub
End Class
Dim b As New Base
b.hidden = 1 ' expect parse error: 'hidden' is private to the class 'Base'.
Print b.family ' expect parse error: 'family' is protected in the class 'Base'.
b.Own ' expect parse error: 'Own' is private to the class 'Base'.
