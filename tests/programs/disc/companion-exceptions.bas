' What the platform raises is an exception of its own class, with name, reason and user information.
' environment: DISC_DRIVES=drives
' expect stderr: A NSRangeException: 
Try
    Print DRDeviceQRX.device(7).displayName
Catch e As NSExceptionQRX
    Print e.Name ' expect: NSRangeException
    Print e.Reason = e.Message ' expect: True
    Print e.Message.Contains("7") ' expect: True
    Print e.UserInfo.Value("Index") ' expect: 7
    Print e.UserInfo.Value("Count") ' expect: 1
    Print e IsA RuntimeException ' expect: True
End Try

' Who knows nothing of it catches it all the same.
Try
    Print DRDeviceQRX.device(8).displayName
Catch nil_ As NilObjectException
    Print "no"
Catch e As RuntimeException
    Print e IsA NSExceptionQRX ' expect: True
    Print e.Message.Contains("8") ' expect: True
End Try

' It may be raised again, and by the program.
Try
    Try
        Print DRDeviceQRX.device(9).displayName
    Catch e As NSExceptionQRX
        Raise e
    End Try
Catch e As NSExceptionQRX
    Print e.Name ' expect: NSRangeException
End Try
Raise New NSExceptionQRX("by hand") ' expect error: NSExceptionQRX: by hand
