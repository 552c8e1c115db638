' Burns a folder as fast as it goes, for the benchmarks.
'
'   disc-basic burn.bas FOLDER plain|verify|abort
'
' "abort" stops the burn after a third of it and prints how many milliseconds passed until the drive was idle.

Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
Dim burn As New DRBurnQRX(drive)
Dim how As String = App.Arguments(1)
burn.verifyDisc = how = "verify"
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionEject ' the default: an aborted burn is idle when the disc is out
burn.Overwrite = True

Dim root As DRFolderQRX = DRFolderQRX.folderWithPath(App.Arguments(0))
root.baseName = "BENCHMARK"
Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
burn.writeLayout(track)

Dim state As String
Dim stopped As Double
Do
    App.DoEvents(1)
    Dim status As Dictionary = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
    If how = "abort" And stopped = 0 And state = DRBurnQRX.DRStatusStateTrackWrite Then
        If status.Value(DRBurnQRX.DRStatusPercentCompleteKey) > 0.33 Then
            stopped = Microseconds
            burn.abort
        End If
    End If
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed

If stopped > 0 Then
    Dim isBusy As Boolean
    Do ' of the drive: the disc is out, and no medium is busy
        isBusy = drive.status.Value(DRDeviceQRX.DRDeviceIsBusyKey)
    Loop Until Not isBusy
    Print Format((Microseconds - stopped) / 1000, "0.0")
    Quit(0)
End If
If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)
    StdErr.WriteLine(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
    Quit(1)
End If
