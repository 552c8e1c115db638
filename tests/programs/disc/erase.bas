' A burned disc is erased, once quickly and once completely; an erase is made and started once.
' environment: DISC_DRIVES=drives
Sub Await(erase As DREraseQRX)
    Dim state As String
    Do
        App.DoEvents(10)
        state = erase.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    Print state
End Sub

Sub BurnSomething(drive As DRDeviceQRX)
    Dim burn As New DRBurnQRX(drive)
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    burn.writeLayout(DRTrackQRX.trackForRootFolder(DRFolderQRX.virtualFolderWithName("Old")))
    Dim state As String
    Do
        App.DoEvents(10)
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    Print state + " " + Str(drive.mediaIsBlank)
End Sub

Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
BurnSomething(drive) ' expect: DRStatusStateDone False
Dim quick As New DREraseQRX(drive)
Print quick.device.isEqualToDevice(drive) ' expect: True
Print quick.eraseType ' expect: DREraseTypeQuick
Print quick.status.Value(DRBurnQRX.DRStatusStateKey) ' expect: DRStatusStateNone
quick.start
Await(quick) ' expect: DRStatusStateDone
Print drive.mediaIsBlank ' expect: True

BurnSomething(drive) ' expect: DRStatusStateDone False
Dim complete As DREraseQRX = DREraseQRX.eraseForDevice(drive)
complete.eraseType = DREraseQRX.DREraseTypeComplete
Print complete.eraseType = DREraseQRX.DREraseTypeComplete ' expect: True
Print complete.properties.Value(DREraseQRX.DREraseTypeKey) ' expect: DREraseTypeComplete
complete.start
Await(complete) ' expect: DRStatusStateDone
Print complete.status.Value(DRBurnQRX.DRStatusPercentCompleteKey) ' expect: 1
Print complete.status.Value(DRBurnQRX.DRStatusEraseTypeKey) ' expect: DREraseTypeComplete
Print drive.mediaIsBlank ' expect: True

Try
    quick.Constructor(Nil)
Catch e As UnsupportedOperationException
    Print e.Message ' expect: Constructor called too often. Object is already initialized.
End Try
If drive.ejectMedia Then
    Dim none As New DREraseQRX(drive)
    none.start
    Await(none) ' expect: DRStatusStateFailed
    Dim error As Dictionary = none.status.Value(DRBurnQRX.DRErrorStatusKey)
    Print Hex(error.Value(DRBurnQRX.DRErrorStatusErrorKey)) ' expect: 80020041
    Print error.Value(DRBurnQRX.DRErrorStatusErrorStringKey) ' expect: There is no disc in "Virtual Disc Drive 1"; put one in.
End If
Dim nothing As New DREraseQRX(Nil) ' expect error: NilObjectException: device is nil
