' A burn that fails obeys its failure action, however early it fails; without a disc the drive is left alone.
' environment: DISC_DRIVES=drives
Function Failed(tracks() As DRTrackQRX, action As String) As String
    Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
    If action <> "" Then burn.BurnFailureAction = action
    burn.writeLayout(tracks)
    Dim state As String
    Do
        App.DoEvents(1)
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)
    Return Hex(problem.Value(DRBurnQRX.DRErrorStatusErrorKey))
End Function

Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(DRFolderQRX.virtualFolderWithName("TWICE"))
Dim twice() As DRTrackQRX
twice.Append(track)
twice.Append(track)
Dim missing() As DRTrackQRX
missing.Append(DRTrackQRX.trackForRootFolder(DRFolderQRX.folderWithPath(New FolderItem("no such folder"))))

Print Failed(twice, DRBurnQRX.DRBurnFailureActionNone) ' expect: 8002006F
Print Failed(missing, DRBurnQRX.DRBurnFailureActionNone) ' expect: 80020101
Print drive.trayIsOpen ' expect: False
Print drive.mediaIsBlank ' expect: True
Print Failed(twice, "") ' expect: 8002006F
Print drive.trayIsOpen ' expect: True
Print drive.closeTray ' expect: True
Print Failed(missing, DRBurnQRX.DRBurnFailureActionEject) ' expect: 80020101
Print drive.trayIsOpen ' expect: True
