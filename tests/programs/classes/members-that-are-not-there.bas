Class Thing
    Name As String
    Const Fixed = 1
    Function Go(n As Integer) As Integer
        Return n
    End Function
    Shared Sub Static1()
        Name = "x" ' expect parse error: 'Name' belongs to objects of the class 'Thing'; it needs one before the dot.
        Print Me.Name ' expect parse error: There is no object here that 'Me' could mean.
    End Sub
End Class
Dim t As New Thing
Print t.Nme ' expect parse error: The class 'Thing' has no 'Nme'; perhaps 'Name' is meant.
t.Go ' expect parse error: 'Go' takes 1 argument, not 0.
t.Go("a") ' expect parse error: 'n' of 'Go' must be an Integer, not a String; Val reads a number from a text.
t.Fixed = 2 ' expect parse error: 'Fixed' is a constant and can't be assigned to.
t.Go(1) = 3 ' expect parse error: 'Go' of the class 'Thing' can't be assigned to.
Print Thing.Name ' expect parse error: 'Name' belongs to objects of the class 'Thing'; it needs one before the dot.
Print New Thing(1) ' expect parse error: The class 'Thing' has no Constructor that takes arguments.
Print Thing ' expect parse error: 'Thing' is a class, not a value.
Dim s As String = "a"
Print s.Nothing1 ' expect parse error: a String has no 'Nothing1'.
t.Name ' expect parse error: This value is not used; a statement has to do something.
