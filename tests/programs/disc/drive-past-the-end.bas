' The platform's own exception reaches the program.
' environment: DISC_DRIVES=drives
' expect stderr: A NSRangeException: 
Try
    Print DRDeviceQRX.device(7).displayName
Catch e As RuntimeException
    Print e.Message.Contains("7") ' expect: True
End Try
