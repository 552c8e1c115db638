' A member that no class declares is told before the program runs.
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Print drive.colour ' expect parse error: The class 'DRDeviceQRX' has no 'colour'.
Print DRDeviceQRX.noSuchConstant ' expect parse error: The class 'DRDeviceQRX' has no 'noSuchConstant'.
