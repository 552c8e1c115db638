Class A ' expect parse error: The class 'A' is not closed; its 'End Class' is missing.
    X As Integer
    Function F() As Integer
        Return 1
    End Function
