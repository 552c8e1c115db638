' What a program gets where the framework lacks everything: empty texts, zeros and nil, and no exception.
Print "text [" + DRDeviceQRX.DRDeviceAppearedNotification + DRBurnQRX.DRBurnCompletionActionKey + "]"
Print "speed " + Str(DRDeviceQRX.DRDeviceBurnSpeedCD1x)
Print "drives " + Str(DRDeviceQRX.deviceCount) + " " + Str(DRDeviceQRX.devices.LastIndex)
Print "address " + If(DRMSFQRX.msf Is Nil, "nil", "made")
Print "folder " + If(DRFolderQRX.virtualFolderWithName("x") Is Nil, "nil", "made")
Print "track " + If(DRTrackQRX.trackForRootFolder(Nil) Is Nil, "nil", "made")
