' Objects that hold each other are destroyed at the end of the program.
Class Node
    Other As Node
    Name As String
    Sub Destructor()
        Print "gone"
    End Sub
End Class
Sub Make()
    Dim a As New Node
    Dim b As New Node
    a.Other = b
    b.Other = a
End Sub
Make
Print "end" ' expect: end
' expect: gone
' expect: gone
