' A literal Nil where an object is due: a burn without a track or an image is none, and one without a drive is refused when
' it starts.
' environment: DISC_DRIVES=drives
Sub ShowEnd(job As Dictionary)
    Dim problem As Dictionary = job.Value(DRBurnQRX.DRErrorStatusKey)
    Print job.Value(DRBurnQRX.DRStatusStateKey) + " " + Hex(problem.Value(DRBurnQRX.DRErrorStatusErrorKey))
End Sub

Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Dim burn As New DRBurnQRX(drive)
burn.writeLayout(Nil)
Print burn.status.Value(DRBurnQRX.DRStatusStateKey) ' expect: DRStatusStateNone
Print burn.writeImageFile(Nil) ' expect: False
Print burn.status.Value(DRBurnQRX.DRStatusStateKey) ' expect: DRStatusStateNone
Print drive.mediaIsBlank ' expect: True

Dim nowhere As DRBurnQRX = DRBurnQRX.burnForDevice(Nil)
Print nowhere.device Is Nil ' expect: True
nowhere.writeLayout(DRTrackQRX.trackForRootFolder(DRFolderQRX.virtualFolderWithName("Disc")))
Do
    App.DoEvents(10)
Loop Until nowhere.status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateFailed
ShowEnd(nowhere.status) ' expect: DRStatusStateFailed 80020023

Dim nothing As DREraseQRX = DREraseQRX.eraseForDevice(Nil)
Print nothing.device Is Nil ' expect: True
nothing.start
Do
    App.DoEvents(10)
Loop Until nothing.status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateFailed
ShowEnd(nothing.status) ' expect: DRStatusStateFailed 80020023
