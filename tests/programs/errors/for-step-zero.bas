Dim n As Integer
For i As Integer = 1 To 3 Step n ' expect error: InvalidArgumentException: the Step of a For loop is 0, so it would never end
Next
