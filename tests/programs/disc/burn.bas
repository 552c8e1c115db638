' A burn goes through its states and ends as done; what it burned is on the disc.
' environment: DISC_DRIVES=drives
Dim folder As New FolderItem("content")
folder.CreateAsFolder
Dim out As TextOutputStream = TextOutputStream.Create(folder.Child("hello.txt"))
out.WriteLine("Hello, disc!")
out.Close

Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("My Disc")
root.addChild(DRFolderQRX.folderWithPath(folder))
Print root.isVirtual ' expect: True

Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Dim burn As New DRBurnQRX(drive)
Print burn.status.Value(DRBurnQRX.DRStatusStateKey) ' expect: DRStatusStateNone
Print burn.verifyDisc ' expect: True
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.writeLayout(DRTrackQRX.trackForRootFolder(root))

Dim state As String
Do
    App.DoEvents(10)
    state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
Print state ' expect: DRStatusStateDone
Print burn.status.Value(DRBurnQRX.DRStatusPercentCompleteKey) ' expect: 1
Print burn.status.HasKey(DRBurnQRX.DRErrorStatusKey) ' expect: False
Print drive.mediaIsBlank ' expect: False
Print drive.mediaSpaceUsed.sectors > 0 ' expect: True
