Class Loud
    Name As String
    Sub Constructor(n As String)
        Name = n
    End Sub
    Sub Destructor()
        Print "gone: " + Name
    End Sub
End Class
Class Louder Inherits Loud
    Sub Destructor()
        Print "louder: " + Name
    End Sub
End Class
Dim a As New Loud("a")
a = Nil ' expect: gone: a
Sub Test()
    Dim b As New Louder("b")
    Print "in test"
End Sub
Test
' expect: in test
' expect: louder: b
' expect: gone: b
Dim first As New Loud("c")
Dim second As Loud = first
first = Nil
Print "still there" ' expect: still there
second = Nil ' expect: gone: c
Dim atEnd As New Loud("end")
Print "last line" ' expect: last line
' expect: gone: end
