' Burns a track whose data the program makes while the disc is written: a tone on an audio CD, four seconds long, or
' as long as one wants; no track of a CD is shorter than that.
'
'   disc-basic generated-track.bas [SECONDS [HERTZ]]
'
' A re-writable disc that holds data is overwritten.

Sub Fail(message As String)
    StdErr.WriteLine("generated-track: " + message)
    Quit(1)
End Sub

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

Dim seconds As Integer = 4
Dim hertz As Double = 440
If App.Arguments.LastIndex >= 0 Then seconds = Val(App.Arguments(0))
If App.Arguments.LastIndex >= 1 Then hertz = Val(App.Arguments(1))
If seconds < 4 Then seconds = 4

If DRDeviceQRX.deviceCount = 0 Then Fail("there is no drive that can write discs; disc-drives list names those in use")
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then Fail("there is no disc in " + drive.displayName + "; insert one and try again")
If Not drive.mediaType.BeginsWith("DRDeviceMediaTypeCD") Then Fail("an audio track needs a CD-R or CD-RW; insert one and try again")

Dim burn As New DRBurnQRX(drive)
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
burn.Overwrite = Not drive.mediaIsBlank

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
