' Makes the re-writable disc in a drive blank again.
'
'   disc-basic erase.bas [--complete] [--yes] [DRIVE]
'
'   --complete    leaves nothing readable: overwrites what a virtual medium holds, and a physical disc from end to end
'   --yes         doesn't ask before data is lost
'
' DRIVE is the name of its folder, or the one that list-drives.bas shows. Without it, the first drive's disc is erased.

Const Usage = "Usage: erase.bas [--complete] [--yes] [DRIVE]"

Sub Fail(message As String)
    StdErr.WriteLine("erase: " + message)
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

Dim eraseType As String = DREraseQRX.DREraseTypeQuick
Dim isSure As Boolean
Dim name As String
For Each argument As String In App.Arguments
    If argument = "--complete" Then
        eraseType = DREraseQRX.DREraseTypeComplete
    ElseIf argument = "--yes" Then
        isSure = True
    ElseIf argument.BeginsWith("--") Or argument = "" Or name <> "" Then
        StdErr.WriteLine(Usage)
        Quit(2)
    Else
        name = argument
    End If
Next

Dim drive As DRDeviceQRX = DriveNamed(name)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then
    Fail("there is no disc in " + drive.displayName + "; insert one" + HowToInsert(drive, "DVD+RW"))
End If

If Not drive.mediaIsBlank And Not isSure Then
    Dim used As String = Format(drive.mediaSpaceUsed.sectors * 2048 / 1000000, "#,##0.0") + " MB"
    If Not System.IsTerminal Then Fail("the disc in " + drive.displayName + " holds " + used + "; give --yes to erase it")
    Dim answer As String = Input("The disc in " + drive.displayName + " holds " + used + ". Erase it? [y/N] ")
    If Lowercase(answer) <> "y" Then Fail("nothing was erased")
End If

Dim erase As New DREraseQRX(drive)
erase.eraseType = eraseType
Dim started As Double = Microseconds
erase.start

' Whether the erase can say how far it is depends on the drive: less than 0 means that it can't.
Dim status As Dictionary
Dim state As String
Dim quarter As Integer
Do
    App.DoEvents(50)
    status = erase.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
    Dim percent As Double = status.Value(DRBurnQRX.DRStatusPercentCompleteKey)
    If System.IsTerminal And percent >= 0 Then
        StdOut.Write(Chr(13) + "Erasing " + Format(percent, "0%") + " ")
    ElseIf Floor(percent * 4) > quarter Then
        quarter = Floor(percent * 4)
        Print "Erasing " + Format(percent, "0%")
    End If
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
If System.IsTerminal Then StdOut.Write(Chr(13) + "             " + Chr(13))

If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Fail(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
End If
Print "The disc in " + drive.displayName + " is blank, after " + Format((Microseconds - started) / 1000000, "0.0") + " seconds."
