Sub Deep(n As Integer)
    If n = 0 Then Quit 5
    Try
        Deep n - 1
    Catch e As RuntimeException
        Print "never"
    Finally
        Print "finally", n
    End Try
End Sub
Deep 2
Print "never"
' expect: finally 1
' expect: finally 2
' expect exit: 5
