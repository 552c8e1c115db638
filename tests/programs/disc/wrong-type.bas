' An argument of the wrong type is told before the program runs.
Dim burn As DRBurnQRX = DRBurnQRX.burnForDevice("a drive") ' expect parse error: 'device' of 'burnForDevice' must be a DRDeviceQRX, not a String.
