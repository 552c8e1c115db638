' A burn can be aborted; its status says why it failed, and the disc is as before.
' environment: DISC_DRIVES=drives
Dim folder As New FolderItem("content")
folder.CreateAsFolder
Dim out As BinaryStream = BinaryStream.Create(folder.Child("big.bin"))
out.Position = 3000000000
out.Write("the end")
out.Close

Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Dim burn As New DRBurnQRX(drive)
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
burn.writeLayout(DRTrackQRX.trackForRootFolder(DRFolderQRX.folderWithPath(folder)))
Do
    App.DoEvents(1)
Loop Until burn.status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateTrackWrite
burn.abort
Do
    App.DoEvents(1)
Loop Until burn.status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateFailed
Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)
Print Hex(problem.Value(DRBurnQRX.DRErrorStatusErrorKey)) ' expect: 80020066
Print drive.mediaIsBlank ' expect: True
Print drive.mediaIsBusy ' expect: False
