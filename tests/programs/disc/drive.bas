' Without anything set up there is one drive with a blank re-writable medium.
' environment: DISC_DRIVES=drives
Print DRDeviceQRX.deviceCount ' expect: 1
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Print drive.displayName ' expect: Virtual Disc Drive 1
Print drive.mediaType = DRDeviceQRX.DRDeviceMediaTypeDVDPlusRW ' expect: True
Print drive.mediaIsBlank And drive.mediaIsErasable And drive.mediaIsOverwritable ' expect: True
Print drive.mediaSpaceFree.sectors ' expect: 2295104
Print DRDeviceQRX.DRDeviceBurnSpeedCD1x ' expect match: ^176\.4
For Each d As DRDeviceQRX In DRDeviceQRX.devices
    Print d.isEqualToDevice(drive) ' expect: True
Next
