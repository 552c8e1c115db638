' Burns a folder onto a drive and verifies what was written.
'
'   disc-basic burn-folder.bas [OPTIONS] FOLDER [VOLUME NAME]
'
'   --drive=NAME     the drive, by its folder's name or the one it shows (default: the first one)
'   --speed=FACTOR   burns no faster than that many times the speed of one (default: as fast as it goes)
'   --no-verify      doesn't read back what was written
'   --then=eject     opens the tray when all is done; --then=mount keeps the disc in (default)
'
' The disc is named after the folder unless a name is given. A re-writable medium that holds data is overwritten.

Const Usage = "Usage: burn-folder.bas [--drive=NAME] [--speed=FACTOR] [--no-verify] [--then=eject|mount] FOLDER [VOLUME NAME]"

' What a state of the burn is called for people.
Function NameOfState(state As String) As String
    Select Case state
    Case DRBurnQRX.DRStatusStatePreparing
        Return "Preparing"
    Case DRBurnQRX.DRStatusStateVerifying
        Return "Verifying"
    Case DRBurnQRX.DRStatusStateFinishing
        Return "Finishing"
    Case DRBurnQRX.DRStatusStateDone
        Return "Done"
    Case DRBurnQRX.DRStatusStateFailed
        Return "Failed"
    Case DRBurnQRX.DRStatusStateTrackWrite
        Return "Writing"
    Else
        Return "Writing"
    End Select
End Function

Function Megabytes(blocks As Double) As String
    Return Format(blocks * 2048 / 1000000, "#,##0.0") + " MB"
End Function

Function Clock(seconds As Double) As String
    Dim whole As Integer = Round(seconds)
    Return Str(whole \ 60) + ":" + Format(whole Mod 60, "00")
End Function

Function Repeated(text As String, times As Integer) As String
    Dim result As String
    For i As Integer = 1 To times
        result = result + text
    Next
    Return result
End Function

' What single speed is for the medium in a drive, in KB a second.
Function SingleSpeed(drive As DRDeviceQRX) As Double
    If drive.mediaType.BeginsWith("DRDeviceMediaTypeCD") Then Return DRDeviceQRX.DRDeviceBurnSpeedCD1x
    If drive.mediaType.BeginsWith("DRDeviceMediaTypeBD") Then Return DRDeviceQRX.DRDeviceBurnSpeedBD1x
    Return DRDeviceQRX.DRDeviceBurnSpeedDVD1x
End Function

Sub Fail(message As String)
    StdErr.WriteLine("burn-folder: " + message)
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

' Shows how far a burn is: a bar on a terminal, a line for each state and each quarter otherwise.
Class Progress
    Private mState As String
    Private mQuarter As Integer
    Private mSince As Double

    Sub Show(status As Dictionary)
        Dim state As String = NameOfState(status.Value(DRBurnQRX.DRStatusStateKey))
        Dim percent As Double = status.Value(DRBurnQRX.DRStatusPercentCompleteKey)
        If state <> mState Then
            mState = state
            mQuarter = 0
            mSince = Microseconds
            If Not System.IsTerminal Then Print state + " …"
        End If
        If percent < 0 Then percent = 0
        If System.IsTerminal Then
            Bar(state, percent, status.Value(DRBurnQRX.DRStatusCurrentSpeedKey))
        ElseIf Floor(percent * 4) > mQuarter Then
            mQuarter = Floor(percent * 4)
            Print "  " + Format(percent, "0%")
        End If
    End Sub

    Sub Finish()
        If System.IsTerminal Then StdOut.Write(Chr(13) + Repeated(" ", System.TerminalWidth - 1) + Chr(13))
    End Sub

    Private Sub Bar(state As String, percent As Double, speed As Double)
        Dim text As String = " " + Format(percent, "0%") + "  " + state
        If speed > 0 Then text = text + "  " + Format(speed / 1000, "#,##0.0") + " MB/s"
        Dim elapsed As Double = (Microseconds - mSince) / 1000000
        If percent > 0 And percent < 1 Then text = text + "  " + Clock(elapsed / percent * (1 - percent)) + " left"
        Dim width As Integer = 30
        Dim done As Integer = Round(percent * width)
        Dim line As String = "[" + Repeated("#", done) + Repeated("-", width - done) + "]" + text
        StdOut.Write(Chr(13) + line + Repeated(" ", Max(0, System.TerminalWidth - 1 - Len(line))))
    End Sub
End Class

' ---- what to burn ---------------------------------------------------------------------------------------

Sub ShowUsage()
    StdErr.WriteLine(Usage)
    Quit(2)
End Sub

Dim names() As String
Dim driveName As String
Dim speedFactor As Double
Dim isVerified As Boolean = True
Dim completion As String = DRBurnQRX.DRBurnCompletionActionMount
For Each argument As String In App.Arguments
    Dim word As String = NthField(argument, "=", 1)
    Dim value As String = Mid(argument, Len(word) + 2)
    If Not argument.BeginsWith("--") Then
        names.Append(argument)
    ElseIf word = "--drive" And value <> "" Then
        driveName = value
    ElseIf word = "--speed" And Val(value) > 0 Then
        speedFactor = Val(value)
    ElseIf argument = "--no-verify" Then
        isVerified = False
    ElseIf argument = "--then=eject" Then
        completion = DRBurnQRX.DRBurnCompletionActionEject
    ElseIf argument <> "--then=mount" Then
        ShowUsage
    End If
Next
If names.LastIndex < 0 Or names.LastIndex > 1 Then ShowUsage
If names(0) = "" Then ShowUsage ' else it would be the folder that the program is run in

Dim source As FolderItem = GetFolderItem(names(0))
If source Is Nil Or Not source.Exists Then Fail("there is no folder " + names(0))
If Not source.Directory Then Fail(names(0) + " is not a folder; give the folder that it is in")

Dim root As DRFolderQRX = DRFolderQRX.folderWithPath(source)
If names.LastIndex = 1 Then root.baseName = names(1)

' ---- where to ---------------------------------------------------------------------------------------------

Dim drive As DRDeviceQRX = DriveNamed(driveName)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then
    Fail("there is no disc in " + drive.displayName + "; insert one" + HowToInsert(drive, "DVD+RW"))
End If
If Not drive.mediaIsBlank And Not drive.mediaIsOverwritable Then
    Fail("the disc in " + drive.displayName + " holds data and can't be overwritten; insert a blank one" + HowToInsert(drive, "DVD+RW"))
End If

Dim kind As String = Replace(drive.mediaType, "DRDeviceMediaType", "")
kind = Replace(kind, "Plus", "+")
Print "Burning " + source.NativePath + " as """ + root.baseName + """"
Print "onto " + drive.displayName + " (" + kind + ", room for " + Megabytes(drive.mediaSpaceOverwritable.sectors) + ")."

Dim burn As New DRBurnQRX(drive)
burn.verifyDisc = isVerified
burn.completionAction = completion
If speedFactor > 0 Then burn.requestedBurnSpeed = speedFactor * SingleSpeed(drive)
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
If Not drive.mediaIsBlank Then
    Print "The disc holds data, which is overwritten."
    burn.Overwrite = True
End If

' ---- burn -------------------------------------------------------------------------------------------------

Dim progress As New Progress
Dim started As Double = Microseconds
Dim status As Dictionary
Dim state As String

' Only tracks that say how are verified.
Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
burn.writeLayout(track)
Do
    App.DoEvents(50)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
    progress.Show(status)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
progress.Finish

If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Fail(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
End If

' ---- say what was done --------------------------------------------------------------------------------------

Dim proof As String = "it was not read back."
If isVerified Then proof = "every byte was read back and is right."
Dim amount As String
If Not drive.trayIsOpen Then amount = Megabytes(drive.mediaSpaceUsed.sectors) + " "
Print "Burned " + amount + "in " + Format((Microseconds - started) / 1000000, "0.0") + " seconds; " + proof
If completion = DRBurnQRX.DRBurnCompletionActionEject Then Print "The disc was ejected."

' A virtual drive is a folder, and its medium an image that other programs read as it is.
Dim place As FolderItem = GetFolderItem(drive.ioRegistryEntryPath)
If place <> Nil And place.Directory Then
    For i As Integer = 1 To place.Count
        Dim file As FolderItem = place.Item(i)
        If file.Name.EndsWith(".iso") Then
            Print "The medium lies in " + file.NativePath
            Print "Look at it with:  bsdtar -tvf '" + file.NativePath + "'"
        End If
    Next
End If
