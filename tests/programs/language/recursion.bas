Function Ackermann(m As Integer, n As Integer) As Integer
    If m = 0 Then Return n + 1
    If n = 0 Then Return Ackermann(m - 1, 1)
    Return Ackermann(m - 1, Ackermann(m, n - 1))
End Function
Print Ackermann(2, 3) ' expect: 9
Function Fibonacci(n As Integer) As Integer
    Return If(n < 2, n, Fibonacci(n - 1) + Fibonacci(n - 2))
End Function
Print Fibonacci(20) ' expect: 6765
