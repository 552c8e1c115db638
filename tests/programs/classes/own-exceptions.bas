Class DiscError Inherits RuntimeException
    Code As Integer
    Sub Constructor(text As String, c As Integer)
        Message = text
        Code = c
    End Sub
End Class
Class MediumError Inherits DiscError
End Class
Try
    Raise New MediumError("no medium", 7)
Catch e As NilObjectException
    Print "no"
Catch e As DiscError
    Print e.Message, e.Code, e IsA MediumError ' expect: no medium 7 True
End Try
Raise New DiscError("at the end", 1) ' expect error: DiscError: at the end
