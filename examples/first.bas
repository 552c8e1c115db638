' The first program: burns the small example folder onto the first drive.
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
If drive.trayIsOpen Then Call drive.closeTray
' A virtual drive is a folder. The disc in a recorder may be somebody's.
If drive.mediaIsPresent And Not drive.mediaIsBlank And Not GetFolderItem(drive.ioRegistryEntryPath).Directory Then
    Print drive.displayName + ": the disc is not blank; put in a blank one"
    Quit(1)
End If
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
