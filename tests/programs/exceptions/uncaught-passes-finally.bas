Class Guard
    Sub Destructor()
        Print "destroyed"
    End Sub
End Class
Sub Test()
    Dim g As New Guard
    Try
        Raise New UnsupportedOperationException("not here") ' expect error: UnsupportedOperationException: not here
    Finally
        Print "finally"
        Dim x As Integer = 1
    End Try
End Sub
Test
' expect: finally
' expect: destroyed
