Try
    Dim d As Dictionary
    Print d.Count
Catch e As NilObjectException
    Print "nil: " + e.Message ' expect: nil: the object whose 'Count' is asked for is nil
End Try
Try
    Print "fine" ' expect: fine
Catch
    Print "never"
Finally
    Print "always" ' expect: always
End Try
Try
    Try
        Raise New IOException("inner")
    Finally
        Print "on the way" ' expect: on the way
    End Try
Catch e
    Print e.Message ' expect: inner
End Try
Try
    Try
        Raise New IOException("again")
    Catch e As IOException
        Raise
    End Try
Catch e As RuntimeException
    Print e.Message, e IsA IOException ' expect: again True
End Try
Try
    Dim d As New Dictionary
    Print d.Value("missing")
Catch e As KeyNotFoundException
    Print "key" ' expect: key
End Try
