Class Twice
    A As Integer
    A As String ' expect parse error: The class has two members with the name 'A'.
    Sub Go(n As Integer)
    End Sub
    Sub Go(m As Integer) ' expect parse error: The class has two 'Go' with these parameters.
    End Sub
    Sub Destructor(n As Integer) ' expect parse error: A Destructor has no parameters.
    End Sub
End Class
Class Circle1 Inherits Circle2 ' expect parse error: The class 'Circle1' inherits from itself.
End Class
Class Circle2 Inherits Circle1
End Class
Class Orphan Inherits Unknown1 ' expect parse error: There is no type 'Unknown1'.
End Class
Class Dictionary ' expect parse error: The name 'Dictionary' is taken by a type that is already there.
End Class
