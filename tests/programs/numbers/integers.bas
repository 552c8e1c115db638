' Integers are computed with 64 bits; what a variable can't hold is cut off when it is stored.
Dim i As Integer = 2147483647
Dim big As Int64 = i + 1
Print big ' expect: 2147483648
i = i + 1
Print i ' expect: -2147483648
Dim b As UInt8 = 255
b = b + 1
Print b ' expect: 0
Dim s As Int8 = 127
s += 1
Print s ' expect: -128
Dim u As UInt32 = 4294967295
Print u + 1 ' expect: 4294967296
Dim w As UInt64 = 18446744073709551615
Print w, w \ 2, w Mod 10, w > 1 ' expect: 18446744073709551615 9223372036854775807 5 True
w = w + 1
Print w ' expect: 0
Dim blocks As Integer = 2000000
Dim bytes As UInt64 = blocks * 2048
Print bytes ' expect: 4096000000
Print 9223372036854775807 + 1 ' expect: -9223372036854775808
Dim d As Double = 3.99
i = d
Print i ' expect: 3
i = -3.99
Print i ' expect: -3
