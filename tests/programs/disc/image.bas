' An image is burned by its folder item and by its path.
' environment: DISC_DRIVES=drives
Sub Await(burn As DRBurnQRX)
    Dim state As String
    Do
        App.DoEvents(10)
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    Print state
End Sub

Function NewBurn(drive As DRDeviceQRX) As DRBurnQRX
    Dim burn As New DRBurnQRX(drive)
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    burn.Overwrite = True
    Return burn
End Function

Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Dim first As DRBurnQRX = NewBurn(drive)
first.writeLayout(DRTrackQRX.trackForRootFolder(DRFolderQRX.virtualFolderWithName("Image")))
Await(first) ' expect: DRStatusStateDone
Dim medium As New FolderItem(drive.ioRegistryEntryPath + "/medium.iso")
medium.CopyFileTo(New FolderItem("image.iso"))

Dim byItem As DRBurnQRX = NewBurn(drive)
Print byItem.writeImageFile(New FolderItem("image.iso")) ' expect: True
Await(byItem) ' expect: DRStatusStateDone
Print drive.mediaSpaceUsed.sectors > 0 ' expect: True

Dim byPath As DRBurnQRX = NewBurn(drive)
Dim none As FolderItem
Print byPath.writeImageFile(none) ' expect: False
Print byPath.status.Value(DRBurnQRX.DRStatusStateKey) ' expect: DRStatusStateNone
Print byPath.writeImageFile("image.iso") ' expect: True
Await(byPath) ' expect: DRStatusStateDone
