' What an exception destroys on its way out may raise, or catch, in its own destructor. The exception is found where it was
' raised all the same.
Class Raises
    Sub Destructor()
        Raise New IOException("in the destructor")
    End Sub
End Class
Class Catches
    Sub Destructor()
        Try
            Raise New IOException("caught")
        Catch e As IOException
            Print e.Message
        End Try
    End Sub
End Class
Sub Fails()
    Dim one As New Raises
    Dim other As New Catches
    Raise New UnsupportedOperationException("not here") ' expect error: UnsupportedOperationException: not here
End Sub
Sub Passes()
    Fails
End Sub
Passes
' expect: caught
