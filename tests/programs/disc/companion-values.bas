' What goes into a property dictionary comes out again, whatever it is.
' environment: DISC_DRIVES=drives
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Dim burn As New DRBurnQRX(drive)
Dim own As New Thing
own.name = "mine"
Dim values As New Dictionary
values.Value("range") = New NSRangeQRX(3, 4)
values.Value("rect") = New NSRectQRX(1, 2, 3, 4)
values.Value("indexes") = New NSIndexSetQRX(5, 2)
values.Value("drive") = drive
values.Value("own") = own
values.Value(drive) = "a drive may be a key"
burn.properties = values

Dim read As Dictionary = burn.properties
Dim range As NSRangeQRX = read.Value("range")
Print range.location ' expect: 3
Dim rect As NSRectQRX = read.Value("rect")
Print rect.height ' expect: 4
Dim indexes As NSIndexSetQRX = read.Value("indexes")
Print indexes.firstIndex ' expect: 5
Print indexes Is values.Value("indexes") ' expect: False
Print read.Value("drive") Is drive ' expect: True
Print read.Value("own") Is own ' expect: True
Print Thing(read.Value("own")).name ' expect: mine
Print read.Value(drive) ' expect: a drive may be a key

' Nothing holds the program's object any more when the burn is gone.
read = Nil
values = Nil
burn = Nil
own = Nil
Print Thing.living ' expect: 0

Class Thing
    Dim name As String
    Shared living As Integer
    Sub Constructor()
        living = living + 1
    End Sub
    Sub Destructor()
        living = living - 1
    End Sub
End Class
