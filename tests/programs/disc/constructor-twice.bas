' A value is made once.
Dim length As New DRMSFQRX(75)
Try
    length.Constructor(150)
Catch e As UnsupportedOperationException
    Print e.Message ' expect: Constructor called too often. Object is already initialized.
End Try
Print length.sectors ' expect: 75
length.Constructor("00:01:00") ' expect error: UnsupportedOperationException: Constructor called too often. Object is already initialized.
