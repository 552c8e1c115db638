' Burns an image (.iso, .cue or .toc) as it is and verifies it.
'
'   disc-basic burn-image.bas [--drive=NAME] IMAGE
'
'   --drive=NAME   the drive, by its folder's name or the one it shows (default: the first one)
'
' A re-writable disc that holds data is overwritten.

Const Usage = "Usage: burn-image.bas [--drive=NAME] IMAGE"

Sub Fail(message As String)
    StdErr.WriteLine("burn-image: " + message)
    Quit(1)
End Sub

' The drive that a person means: by the name of its folder, its path, or the name that it shows. "" is the first one.
Function DriveNamed(name As String) As DRDeviceQRX
    Dim shown() As DRDeviceQRX
    For Each drive As DRDeviceQRX In DRDeviceQRX.devices
        Dim place As FolderItem = GetFolderItem(drive.ioRegistryEntryPath)
        If name = "" Or StrComp(name, place.Name, 0) = 0 Or StrComp(name, place.NativePath, 0) = 0 Then Return drive
        If StrComp(name, drive.displayName, 0) = 0 Then shown.Append(drive)
    Next
    If name = "" Then Fail("there is no drive that can write discs; disc-drives list names those in use")
    If shown.Count = 0 Then Fail("there is no drive " + name + "; list-drives.bas shows which there are")
    If shown.Count > 1 Then Fail("several drives are called " + name + "; take a path that list-drives.bas shows")
    Return shown(0)
End Function

' How a disc gets into a drive: a command for a virtual one, a hand for a recorder.
Function HowToInsert(drive As DRDeviceQRX, kind As String) As String
    Dim place As FolderItem = GetFolderItem(drive.ioRegistryEntryPath)
    If Not place.Directory Then Return " and try again"
    Return " with: disc-drives blank-medium " + kind + " blank.medium && disc-drives insert '" + _
        ReplaceAll(place.Name, "'", "'\''") + "' blank.medium"
End Function

Dim path As String
Dim driveName As String
For Each argument As String In App.Arguments
    If argument.BeginsWith("--drive=") And Len(argument) > 8 Then
        driveName = Mid(argument, 9)
    ElseIf path = "" And Not argument.BeginsWith("--") Then
        path = argument
    Else
        path = ""
        Exit
    End If
Next
If path = "" Then
    StdErr.WriteLine(Usage)
    Quit(2)
End If
Dim image As FolderItem = GetFolderItem(path)
If Not image.Exists Then Fail("there is no file " + path)
If image.Directory Then Fail(path + " is a folder; burn-folder.bas burns folders")

Dim drive As DRDeviceQRX = DriveNamed(driveName)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then
    Fail("there is no disc in " + drive.displayName + "; insert one" + HowToInsert(drive, "DVD+RW"))
End If
If Not drive.mediaIsBlank And Not drive.mediaIsOverwritable Then
    Fail("the disc in " + drive.displayName + " holds data and can't be overwritten; insert a blank one" + HowToInsert(drive, "DVD+RW"))
End If

Dim burn As New DRBurnQRX(drive)
burn.verifyDisc = True
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
If Not drive.mediaIsBlank Then
    Print "The disc in " + drive.displayName + " holds data, which is overwritten."
    burn.Overwrite = True
End If

Dim started As Double = Microseconds
If Not burn.writeImageFile(image) Then Fail(path + " is no image that can be burned")

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
