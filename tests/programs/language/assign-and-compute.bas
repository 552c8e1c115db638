Dim n As Integer = 10
n += 5
Print n ' expect: 15
n -= 1
n *= 2
Print n ' expect: 28
n \= 3
Print n ' expect: 9
Dim x As Double = 9
x /= 2
Print x ' expect: 4.5
x ^= 2
Print x ' expect: 20.25
Dim s As String = "a"
s += "b"
s &= 1
Print s ' expect: ab1
Dim a() As Integer = Array(1, 2)
a(1) += 5
Print a(1) ' expect: 7
