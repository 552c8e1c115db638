' Burns an image (.iso, .cue or .toc) as it is onto the first drive, and verifies it.
'
'   disc-basic burn-image.bas IMAGE
'
' A re-writable disc that holds data is overwritten.

Const Usage = "Usage: burn-image.bas IMAGE"

Sub Fail(message As String)
    StdErr.WriteLine("burn-image: " + message)
    Quit(1)
End Sub

If App.Arguments.LastIndex <> 0 Then
    StdErr.WriteLine(Usage)
    Quit(2)
End If
Dim image As FolderItem = GetFolderItem(App.Arguments(0))
If image Is Nil Or Not image.Exists Then Fail("there is no file " + App.Arguments(0))
If image.Directory Then Fail(App.Arguments(0) + " is a folder; burn-folder.bas burns folders")

If DRDeviceQRX.deviceCount = 0 Then Fail("there is no drive that can write discs; disc-drives list names those in use")
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then Fail("there is no disc in " + drive.displayName + "; insert one and try again")

Dim burn As New DRBurnQRX(drive)
burn.verifyDisc = True
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
If Not drive.mediaIsBlank Then
    Print "The disc in " + drive.displayName + " holds data, which is overwritten."
    burn.Overwrite = True
End If

Dim started As Double = Microseconds
If Not burn.writeImageFile(image) Then Fail(App.Arguments(0) + " is no image that can be burned")

Dim status As Dictionary
Dim state As String
Dim shown As String
Do
    App.DoEvents(50)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
    Dim now As String
    If state = DRBurnQRX.DRStatusStateTrackWrite Then
        now = "Writing track " + Str(status.Value(DRBurnQRX.DRStatusCurrentTrackKey)) + " of " + _
            Str(status.Value(DRBurnQRX.DRStatusTotalTracksKey))
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
Print "Burned " + image.Name + ", " + Format(drive.mediaSpaceUsed.sectors * 2048 / 1000000, "#,##0.0") + " MB, in " + _
    Format((Microseconds - started) / 1000000, "0.0") + " seconds; every byte was read back and is right."
