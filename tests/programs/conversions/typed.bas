Dim d As Double = 5
Print d / 2 ' expect: 2.5
Dim s As Single = 0.1
Print s ' expect: 0.1
Dim n As Integer = 7.9
Print n ' expect: 7
Print Integer(2.9), Double(3) / 2, String(5) + "x", Int64("12") ' expect: 2 1.5 5x 12
Dim v As Variant = "3.5 m"
d = v
Print d ' expect: 3.5
Dim b As Boolean = Boolean("true")
Print b ' expect: True
Dim o As Object = New Date
Print Date(o) Is o ' expect: True
