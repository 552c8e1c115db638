Print &hFF, &HfF, &o17, &b1010 ' expect: 255 255 15 10
Print 1.5e3, 1E-3, .5 ' expect: 1500 0.001 0.5
Print 2147483647, 2147483648, 9223372036854775807, 18446744073709551615
' expect: 2147483647 2147483648 9223372036854775807 18446744073709551615
Dim bits As Integer = &hFFFFFFFF
Print bits ' expect: -1
Dim b As Integer = 1
Print "x" &b ' expect: x1
Dim hello As String = "h"
Print "x" &hello ' expect: xh
Print -2147483648 ' expect: -2147483648
Print 1e300 * 1e100, 0.1 + 0.2, 1e16, 123456789.125
' expect: inf 0.30000000000000004 1e+16 123456789.125
