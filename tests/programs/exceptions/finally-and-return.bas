Function Test() As Integer
    Try
        Return 1
    Finally
        Print "finally" ' expect: finally
    End Try
    Return 2
End Function
Print Test ' expect: 1
Function Overridden() As Integer
    Try
        Raise New RuntimeException("lost")
    Finally
        Return 3
    End Try
End Function
Print Overridden ' expect: 3
For i As Integer = 1 To 3
    Try
        If i = 1 Then Continue
        If i = 2 Then Exit
    Finally
        Print "f", i
    End Try
    Print "never"
Next
' expect: f 1
' expect: f 2
Function FromCatch() As String
    Try
        Raise New RuntimeException
    Catch
        Return "caught"
    Finally
        Print "last" ' expect: last
    End Try
End Function
Print FromCatch ' expect: caught
