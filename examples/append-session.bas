' Adds a folder to the disc in the first drive, behind what is there, and leaves the disc open for more.
'
'   disc-basic append-session.bas FOLDER
'
' On a blank disc this is the first session. Each session shows the files of those before it, too.

Const Usage = "Usage: append-session.bas FOLDER"

Sub Fail(message As String)
    StdErr.WriteLine("append-session: " + message)
    Quit(1)
End Sub

' How many sessions are on the disc, as the drive tells it.
Function SessionCount(drive As DRDeviceQRX) As Integer
    Dim medium As Dictionary = drive.status.Value(DRDeviceQRX.DRDeviceMediaInfoKey)
    Return medium.Value(DRDeviceQRX.DRDeviceMediaSessionCountKey)
End Function

If App.Arguments.LastIndex <> 0 Then
    StdErr.WriteLine(Usage)
    Quit(2)
End If
Dim source As FolderItem = GetFolderItem(App.Arguments(0))
If source Is Nil Or Not source.Exists Then Fail("there is no folder " + App.Arguments(0))
If Not source.Directory Then Fail(App.Arguments(0) + " is not a folder; give the folder that it is in")

If DRDeviceQRX.deviceCount = 0 Then Fail("there is no drive that can write discs; disc-drives list names those in use")
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then Fail("there is no disc in " + drive.displayName + "; insert one and try again")
If Not drive.mediaIsAppendable Then Fail("nothing can be added to the disc in " + drive.displayName + "; insert another one")
Print "Sessions on the disc in " + drive.displayName + ": " + Str(SessionCount(drive)) + ", with room for " + _
    Format(drive.mediaSpaceFree.sectors * 2048 / 1000000, "#,##0.0") + " MB more."

Dim burn As New DRBurnQRX(drive)
burn.appendable = True
burn.verifyDisc = True
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(DRFolderQRX.folderWithPath(source))
track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
burn.writeLayout(track)

Dim status As Dictionary
Dim state As String
Dim shown As String
Do
    App.DoEvents(50)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
    Dim now As String
    If state = DRBurnQRX.DRStatusStateTrackWrite Then
        now = "Writing"
    ElseIf state = DRBurnQRX.DRStatusStateSessionClose Then
        now = "Closing the session"
    ElseIf state = DRBurnQRX.DRStatusStateVerifying Then
        now = "Verifying"
    End If
    If now <> "" And now <> shown Then Print now + " …"
    If now <> "" Then shown = now
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed

If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Fail(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
End If
Print "Added " + source.Name + " as session " + Str(SessionCount(drive)) + "; " + _
    Format(drive.mediaSpaceFree.sectors * 2048 / 1000000, "#,##0.0") + " MB are left."
