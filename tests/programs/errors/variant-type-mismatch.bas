Dim v As Variant = New Date
Dim d As Dictionary
Try
    d = v
Catch e As TypeMismatchException
    Print "mismatch" ' expect: mismatch
End Try
v = 5
Try
    Print v.Foo
Catch e As UnsupportedOperationException
    Print "no member" ' expect: no member
End Try
Try
    Print v(0)
Catch e As TypeMismatchException
    Print e.Message ' expect: only arrays have elements, not Int32
End Try
v = "a"
Print v * 2 ' expect error: TypeMismatchException: this operator takes two numbers, not String and Int32
