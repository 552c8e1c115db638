' The first program: burns the small example folder onto the first drive.
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
If drive.trayIsOpen Then Call drive.closeTray
Dim burn As New DRBurnQRX(drive)
burn.Overwrite = True
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
burn.writeLayout(DRTrackQRX.trackForRootFolder(DRFolderQRX.folderWithPath("examples/hello-disc")))
Dim status As Dictionary
Dim state As String
Do
    App.DoEvents(50)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
Print drive.displayName + ": " + state
If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Print problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey)
End If
