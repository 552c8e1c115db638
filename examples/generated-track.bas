' Burns a track whose data the program makes while the disc is written: a tone on an audio CD, four seconds long, or
' as long as one wants; no track of a CD is shorter than that.
'
'   disc-basic generated-track.bas [--drive=NAME] [SECONDS [HERTZ]]
'
'   --drive=NAME   the drive, by its folder's name or the one it shows (default: the first one)
'   SECONDS        how long (default: 4)
'   HERTZ          how high (default: 440)
'
' A re-writable disc that holds data is overwritten.

Const Usage = "Usage: generated-track.bas [--drive=NAME] [SECONDS [HERTZ]]"

Sub Fail(message As String)
    StdErr.WriteLine("generated-track: " + message)
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

' A CD's sound: 44,100 samples a second, left and right, 16 bits each with the low byte first. A block is 2352 bytes,
' that is 588 samples.
Class ToneTrack Inherits DRTrackQRX
    Private mWave As String              ' one second
    Private mBlocksAsked As Integer
    Prepared As Boolean
    CleanedUp As Boolean

    Sub Constructor(seconds As Integer, hertz As Double)
        Super.Constructor
        Dim samples As New MemoryBlock(44100 * 4)
        For i As Integer = 0 To 44099
            Dim level As Integer = Round(Sin(2 * 3.14159265358979 * hertz * i / 44100) * 16000)
            samples.Int16Value(i * 4) = level
            samples.Int16Value(i * 4 + 2) = level
        Next
        mWave = samples.StringValue(0, 44100 * 4)

        Dim settings As Dictionary = properties
        settings.Value(DRTrackQRX.DRTrackLengthKey) = seconds * 75
        settings.Value(DRTrackQRX.DRBlockSizeKey) = DRTrackQRX.kDRBlockSizeAudio
        settings.Value(DRTrackQRX.DRBlockTypeKey) = DRTrackQRX.kDRBlockTypeAudio
        settings.Value(DRTrackQRX.DRDataFormKey) = DRTrackQRX.kDRDataFormAudio
        settings.Value(DRTrackQRX.DRSessionFormatKey) = DRTrackQRX.kDRSessionFormatAudio
        settings.Value(DRTrackQRX.DRTrackModeKey) = DRTrackQRX.kDRTrackModeAudio
        settings.Value(DRTrackQRX.DRVerificationTypeKey) = DRTrackQRX.DRVerificationTypeProduceAgain
        properties = settings
    End Sub

    Property BlocksAsked As Integer
        Get
            Return mBlocksAsked
        End Get
    End Property

    Event prepareTrack(burn As DRBurnQRX) As Boolean
        Prepared = True
        Return True
    End Event

    ' The same bytes whenever they are asked for, so that the disc can be compared with them.
    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        Dim count As Integer = Bufferlen \ blocksize
        mBlocksAsked += count
        Dim done As Integer
        While done < count
            Dim place As Integer = (address + done) Mod 75
            Dim blocks As Integer = Min(75 - place, count - done)
            buffer.StringValue(done * 2352, blocks * 2352) = MidB(mWave, place * 2352 + 1, blocks * 2352)
            done += blocks
        Wend
        Return count * blocksize
    End Event

    Event prepareTrackForVerification() As Boolean
        Return True
    End Event

    Event cleanupTrackAfterVerification() As Boolean
        Return True
    End Event

    Event cleanupTrackAfterBurn()
        CleanedUp = True
    End Event
End Class

Dim numbers() As Double
Dim driveName As String
For Each argument As String In App.Arguments
    If argument.BeginsWith("--drive=") And Len(argument) > 8 Then
        driveName = Mid(argument, 9)
    ElseIf numbers.Count < 2 And Val(argument) > 0 Then
        numbers.Append(Val(argument))
    Else
        StdErr.WriteLine(Usage)
        Quit(2)
    End If
Next
Dim seconds As Integer = 4
Dim hertz As Double = 440
If numbers.Count > 0 Then seconds = Max(4, Min(6000, numbers(0)))
If numbers.Count > 1 Then hertz = numbers(1)

Dim drive As DRDeviceQRX = DriveNamed(driveName)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then
    Fail("there is no disc in " + drive.displayName + "; insert one" + HowToInsert(drive, "CD-RW"))
End If
If Not drive.mediaType.BeginsWith("DRDeviceMediaTypeCD") Then
    Fail("an audio track needs a CD-R or CD-RW; insert one" + HowToInsert(drive, "CD-RW"))
End If
If Not drive.mediaIsBlank And Not drive.mediaIsOverwritable Then
    Fail("the disc in " + drive.displayName + " holds data and can't be overwritten; insert a blank one" + HowToInsert(drive, "CD-RW"))
End If

Dim burn As New DRBurnQRX(drive)
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
If Not drive.mediaIsBlank Then
    Print "The disc in " + drive.displayName + " holds data, which is overwritten."
    burn.Overwrite = True
End If

Dim track As New ToneTrack(seconds, hertz)
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
Print "Burned a tone of " + Str(hertz) + " Hz, " + track.Length.description + " long."
Print Str(track.BlocksAsked) + " blocks were made for " + Str(track.Length.sectors) + " on the disc: each was made again to verify it."
