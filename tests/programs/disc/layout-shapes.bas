' A layout of the wrong shape is refused with an exception, nil does nothing, and the burn can be used afterwards.
' environment: DISC_DRIVES=drives
' expect stderr: A NSInvalidArgumentException: A burn can't write an empty array
' expect stderr: A NSInternalInconsistencyException: This burn has been used before
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Dim burn As New DRBurnQRX(drive)
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount

Dim none() As DRTrackQRX
Dim noTrack As DRTrackQRX
Try
    burn.writeLayout(none)
Catch problem As RuntimeException
    Print "refused" ' expect: refused
End Try
burn.writeLayout(noTrack)
Print burn.status.Value(DRBurnQRX.DRStatusStateKey) ' expect: DRStatusStateNone
Print drive.mediaIsBlank ' expect: True

Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Shapes")
Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
burn.writeLayout(track)
Dim state As String
Do
    App.DoEvents(10)
    state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
Print state ' expect: DRStatusStateDone
Try
    burn.writeLayout(track)
Catch problem As RuntimeException
    Print "used before" ' expect: used before
End Try
