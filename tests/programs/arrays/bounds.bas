Dim a(2) As Integer
Try
    a(3) = 1
Catch e As OutOfBoundsException
    Print e.Message ' expect: index 3 is out of bounds: the array's last index is 2
End Try
Try
    Print a(-1)
Catch e As OutOfBoundsException
    Print "low" ' expect: low
End Try
Dim b() As String
Try
    Print b.Pop
Catch e As OutOfBoundsException
    Print e.Message ' expect: the array is empty
End Try
Try
    Redim a(-5)
Catch e As OutOfBoundsException
    Print "size" ' expect: size
End Try
Print a(7) ' expect error: OutOfBoundsException: index 7 is out of bounds: the array's last index is 2
