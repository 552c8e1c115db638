' Adds a folder to a disc, behind what is there, and leaves the disc open for more.
'
'   disc-basic append-session.bas [--drive=NAME] FOLDER
'
'   --drive=NAME   the drive, by its folder's name or the one it shows (default: the first one)
'
' On a blank disc this is the first session. Each session shows the files of those before it, too.

Const Usage = "Usage: append-session.bas [--drive=NAME] FOLDER"

Sub Fail(message As String)
    StdErr.WriteLine("append-session: " + message)
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

' How many sessions are on the disc, as the drive tells it.
Function SessionCount(drive As DRDeviceQRX) As Integer
    Dim medium As Dictionary = drive.status.Value(DRDeviceQRX.DRDeviceMediaInfoKey)
    Return medium.Value(DRDeviceQRX.DRDeviceMediaSessionCountKey)
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
Dim source As FolderItem = GetFolderItem(path)
If Not source.Exists Then Fail("there is no folder " + path)
If Not source.Directory Then Fail(path + " is not a folder; give the folder that it is in")

Dim drive As DRDeviceQRX = DriveNamed(driveName)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then
    Fail("there is no disc in " + drive.displayName + "; insert one" + HowToInsert(drive, "DVD+R"))
End If
If Not drive.mediaIsAppendable Then
    Dim advice As String = "insert a blank one" + HowToInsert(drive, "DVD+R")
    If drive.mediaIsErasable Then advice = "erase.bas makes it blank, or " + advice
    Fail("nothing can be added to the disc in " + drive.displayName + "; " + advice)
End If
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
