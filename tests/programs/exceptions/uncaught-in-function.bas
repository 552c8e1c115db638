Function Fails(n As Integer) As Integer
    Dim list(1) As Integer
    Return list(n) ' expect error: OutOfBoundsException: index 5 is out of bounds: the array's last index is 1
End Function
Print "start" ' expect: start
Print Fails(5)
' expect stderr: list(n)
