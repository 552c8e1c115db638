' Without a companion an object that the platform has no counterpart for becomes nil on the way over.
' environment: DISC_DRIVES=drives
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Dim burn As New DRBurnQRX(drive)
Dim values As New Dictionary
values.Value("drive") = drive
values.Value("text") = "as it was"
burn.properties = values
Dim read As Dictionary = burn.properties
Print read.HasKey("drive") ' expect: True
Print read.Value("drive") Is Nil ' expect: True
Print read.Value("text") ' expect: as it was
