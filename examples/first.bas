' The first program: burns the small example folder onto the first drive.
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Dim burn As New DRBurnQRX(drive)
burn.Overwrite = True
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.writeLayout(DRTrackQRX.trackForRootFolder(DRFolderQRX.folderWithPath("examples/hello-disc")))
Dim state As String
Do
    App.DoEvents(50)
    state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
Print drive.displayName + ": " + state
