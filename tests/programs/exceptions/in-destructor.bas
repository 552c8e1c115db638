' What a destructor raises is told at a later statement; it can't stop the destruction.
Class Bad
    Sub Destructor()
        Raise New IOException("in the destructor")
    End Sub
End Class
Dim caught As Boolean
Try
    Dim b As New Bad
    b = Nil
    For i As Integer = 1 To 1000
    Next
Catch e As IOException
    caught = True
    Print e.Message ' expect: in the destructor
End Try
Print caught ' expect: True
