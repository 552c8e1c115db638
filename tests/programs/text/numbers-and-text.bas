Print Val("12.5 MB"), Val("abc"), Val("  -3e2"), Val("&hFF"), Val("1,5") ' expect: 12.5 0 -300 255 1
Print CDbl("2.5"), CLong("9000000000"), CLong("12.9"), CInt("7x") ' expect: 2.5 9000000000 12 7
Print Str(5), Str(2.5), Str(True), CStr(-1) ' expect: 5 2.5 True -1
Print Str(3.14159, "0.00") ' expect: 3.14
Print Hex(255), Hex(-1), Oct(8), Bin(5), Hex(1099511627776) ' expect: FF FFFFFFFF 10 101 10000000000
Dim n As Integer = 5
Print n.ToString + "!" ' expect: 5!
