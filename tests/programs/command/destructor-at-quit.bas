Class Burn
    Sub Destructor()
        Print "aborted"
    End Sub
End Class
Dim b As New Burn
Sub Inner()
    Dim c As New Burn
    Quit 3
End Sub
Inner
Print "never"
' expect: aborted
' expect: aborted
' expect exit: 3
