' A program that calls itself without end gets an exception that it can catch.
Function Endless(n As Integer) As Integer
    Return Endless(n + 1) + 1
End Function
Try
    Print Endless(0)
Catch e As StackOverflowException
    Print "caught: " + e.Message ' expect: caught: the program calls itself too deeply
End Try
Class Loop1
    Function Go() As Integer
        Return Self.Go + 1
    End Function
End Class
Dim l As New Loop1
Try
    Print l.Go
Catch e As StackOverflowException
    Print "again" ' expect: again
End Try
Sub Empty1()
    Empty1
End Sub
Empty1 ' expect exit: 1
' expect stderr: uncaught StackOverflowException: the program calls itself too deeply
