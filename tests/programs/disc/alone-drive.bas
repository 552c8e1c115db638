' Without a companion a drive is another object each time, and what the platform raises is a plain exception.
' environment: DISC_DRIVES=drives
' expect stderr: A NSRangeException: 
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Dim again As DRDeviceQRX = DRDeviceQRX.device(0)
Print drive Is again ' expect: False
Print drive.isEqualToDevice(again) ' expect: True
again = Nil
Print drive.displayName ' expect: Virtual Disc Drive 1
Print DRDeviceQRX.device(7).displayName ' expect error: RuntimeException: Index 7 is out of range 1 (in 'objectAtIndex:')
