Class Temperature
    Private kelvin As Double
    Property Celsius As Double
        Get
            Return kelvin - 273
        End Get
        Set
            kelvin = value + 273
        End Set
    End Property
    Property Fahrenheit As Double
        Get
            Return Celsius * 9 / 5 + 32
        End Get
        Set(f As Double)
            Celsius = (f - 32) * 5 / 9
        End Set
    End Property
    Property Fixed As Integer
        Get
            Return 42
        End Get
    End Property
    Shared Property Zero As Double
        Get
            Return -273
        End Get
    End Property
End Class
Dim t As New Temperature
t.Celsius = 100
Print t.Fahrenheit ' expect: 212
t.Fahrenheit = 32
Print t.Celsius ' expect: 0
t.Celsius += 5
Print t.Celsius, t.Fixed, Temperature.Zero ' expect: 5 42 -273
