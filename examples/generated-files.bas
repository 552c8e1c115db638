' Burns files that nobody has stored: their bytes are made while the disc is written.
'
'   disc-basic generated-files.bas [--drive=NAME] [ROWS]
'
'   --drive=NAME   the drive, by its folder's name or the one it shows (default: the first one)
'   ROWS           how many rows a file has, 1 to 1000000 (default: 500)
'
' A re-writable disc that holds data is overwritten. The events run in the burn's own time while the loop below watches its status.

Const Usage = "Usage: generated-files.bas [--drive=NAME] [ROWS]"
Const RowBytes = 31

Sub Fail(message As String)
    StdErr.WriteLine("generated-files: " + message)
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

' A table of powers: rows of one length, so the size is known before the first row is made. A million's cube has 19 digits.
Class PowerTable Inherits DRFileQRX
    Public Rows As Integer
    Public Exponent As Integer

    Function Row(number As Integer) As String
        Dim power As Int64 = 1
        For i As Integer = 1 To Exponent
            power = power * number
        Next
        Return Right("          " + Str(number), 10) + Right("                    " + Str(power), 20) + Chr(10)
    End Function

    Event prepareFileForBurn() As Boolean
        Print "Making " + baseName
        Return True
    End Event

    Event calculateSizeOfFile(fork As Integer, estimating As Boolean) As UInt64
        If fork <> DRFileQRX.DRFileForkData Then Return 0
        Return Rows * RowBytes
    End Event

    ' As many whole rows as fit, from the row that the address falls on.
    Event produceFile(fork As Integer, buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32) As UInt32
        Dim number As Integer = address \ RowBytes
        Dim skip As Integer = address Mod RowBytes
        Dim made As Integer = 0
        While number < Rows And made < Bufferlen
            Dim text As String = Mid(Row(number + 1), skip + 1)
            If made + Len(text) > Bufferlen Then text = Left(text, Bufferlen - made)
            buffer.StringValue(made, Len(text)) = text
            made = made + Len(text)
            number = number + 1
            skip = 0
        Wend
        Return made
    End Event

    Event cleanupFileAfterBurn()
        Print "Done with " + baseName
    End Event
End Class

Dim given As String
Dim driveName As String
Dim rows As Integer = 500
For Each argument As String In App.Arguments
    If argument.BeginsWith("--drive=") And Len(argument) > 8 Then
        driveName = Mid(argument, 9)
    Else
        rows = Val(argument)
        If given <> "" Or Str(rows) <> argument Or rows < 1 Or rows > 1000000 Then
            StdErr.WriteLine(Usage)
            Quit(2)
        End If
        given = argument
    End If
Next

Dim drive As DRDeviceQRX = DriveNamed(driveName)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then
    Fail("there is no disc in " + drive.displayName + "; insert one" + HowToInsert(drive, "DVD+RW"))
End If
If Not drive.mediaIsBlank And Not drive.mediaIsOverwritable Then
    Fail("the disc in " + drive.displayName + " holds data and can't be overwritten; insert a blank one" + HowToInsert(drive, "DVD+RW"))
End If

Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Generated")
For exponent As Integer = 2 To 3
    Dim table As New PowerTable("powers of " + Str(exponent) + ".txt")
    table.Rows = rows
    table.Exponent = exponent
    root.addChild(table)
Next

Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
Dim burn As New DRBurnQRX(drive)
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
If Not drive.mediaIsBlank Then
    Print "The disc in " + drive.displayName + " holds data, which is overwritten."
    burn.Overwrite = True
End If
burn.writeLayout(track)
Dim status As Dictionary
Dim state As String
Do
    App.DoEvents(20)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Fail(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
End If
Print "Burned " + Str(rows) + " rows in each of " + Str(root.count) + " tables."
