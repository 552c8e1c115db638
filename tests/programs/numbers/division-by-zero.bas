Dim zero As Integer
Try
    Print 1 \ zero
Catch e As DivisionByZeroException
    Print e.Message ' expect: \ divides by zero
End Try
Try
    Print 1 Mod zero
Catch e As DivisionByZeroException
    Print e.Message ' expect: Mod divides by zero
End Try
Print 1 / zero > 1e300 ' expect: True
Dim smallest As Int64 = -9223372036854775807 - 1
Print smallest \ -1, smallest Mod -1 ' expect: -9223372036854775808 0
