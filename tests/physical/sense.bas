' Burns a file and prints what the drive said when it failed.

Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("SENSE")
Dim content As FolderItem = GetFolderItem(App.Arguments(0))
root.addChild(DRFileQRX.fileWithPath(content))
Dim burn As New DRBurnQRX(DRDeviceQRX.devices(0))
burn.writeLayout(DRTrackQRX.trackForRootFolder(root))
Dim status As Dictionary
Dim state As String
Do
    App.DoEvents(20)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
Print(state)
If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Print(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
    Print(problem.Value(DRBurnQRX.DRErrorStatusSenseCodeStringKey))
    Print(problem.Value(DRBurnQRX.DRErrorStatusAdditionalSenseStringKey))
    Dim sense As MemoryBlock = problem.Value(DRBurnQRX.DRErrorStatusSenseKey)
    Print(Str(sense.Size) + " " + Str(sense.UInt8Value(2)) + " " + Str(sense.UInt8Value(12)))
End If
