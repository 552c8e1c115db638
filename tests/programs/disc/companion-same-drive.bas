' The same drive is the same object wherever it comes from.
' environment: DISC_DRIVES=drives
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Print drive Is DRDeviceQRX.device(0) ' expect: True
For Each d As DRDeviceQRX In DRDeviceQRX.devices
    Print d Is drive ' expect: True
Next
Dim burn As New DRBurnQRX(drive)
Print burn.device Is drive ' expect: True

' An object that nobody holds any more leaves nothing behind.
Dim name As String = drive.displayName
burn = Nil
drive = Nil
drive = DRDeviceQRX.device(0)
Print drive.displayName = name ' expect: True

' Folders, too.
Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("root")
Dim child As DRFolderQRX = DRFolderQRX.virtualFolderWithName("child")
root.addChild(child)
Print child.parent Is root ' expect: True
