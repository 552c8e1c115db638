' Tracks that are wrong, or go wrong, in every way that a program can bring about: each ends its burn with a code, and a disc
' that can be written again is as it was.
' environment: DISC_DRIVES=drives
' time limit: 120
Class Produced Inherits DRTrackQRX
    Public Mode As String
    Public Again As Boolean
    Public Speed As Double
    Shared Current As Produced
    Shared Ended As Integer
    Shared Pattern As String

    Sub Constructor(mode As String, blocks As Integer)
        Super.Constructor
        Me.Mode = mode
        Dim settings As Dictionary = properties
        settings.Value(DRTrackQRX.DRTrackLengthKey) = blocks
        settings.Value(DRTrackQRX.DRBlockSizeKey) = DRTrackQRX.kDRBlockSizeMode1Data
        settings.Value(DRTrackQRX.DRBlockTypeKey) = DRTrackQRX.kDRBlockTypeMode1Data
        settings.Value(DRTrackQRX.DRDataFormKey) = DRTrackQRX.kDRDataFormMode1Data
        settings.Value(DRTrackQRX.DRSessionFormatKey) = DRTrackQRX.kDRSessionFormatMode1Data
        settings.Value(DRTrackQRX.DRTrackModeKey) = DRTrackQRX.kDRTrackMode1Data
        settings.Value(DRTrackQRX.DRVerificationTypeKey) = DRTrackQRX.DRVerificationTypeProduceAgain
        properties = settings
    End Sub
    Sub Destructor()
        Produced.Ended += 1
    End Sub

    Event prepareTrack(burn As DRBurnQRX) As Boolean
        Return True
    End Event
    Event prepareTrackForVerification() As Boolean
        Again = True
        Return True
    End Event
    Event cleanupTrackAfterVerification() As Boolean
        Return True
    End Event
    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        If Mode = "speed" And address = 0 And Not Again Then Speed = testProductionSpeedForLength(100000)
        If Mode = "drops itself" And address > 0 Then Produced.Current = Nil
        If Mode = "zero" And address > 0 Then Return 0
        If Mode = "too much" And address > 0 Then Return Bufferlen + 1
        Dim bytes As Integer = Bufferlen
        If Mode = "little" And bytes > 20000 Then bytes = 20000 ' an end inside a block
        If bytes > 65536 Then bytes = 65536
        buffer.StringValue(0, bytes) = Left(Produced.Pattern, bytes)
        If Mode = "changes" And Again And address > 0 Then buffer.UInt8Value(0) = 120
        Return bytes
    End Event
End Class

Produced.Pattern = "."
While Len(Produced.Pattern) < 65536
    Produced.Pattern = Produced.Pattern + Produced.Pattern
Wend

Sub PutText(file As FolderItem, text As String)
    Dim stream As TextOutputStream = TextOutputStream.Create(file)
    stream.Write(text)
    stream.Close
End Sub
Dim place As FolderItem = GetFolderItem("drives")
place.CreateAsFolder
place = place.Child("cd")
place.CreateAsFolder
PutText(place.Child("medium.json"), "{""format"":1,""kind"":""CD-RW"",""capacityBlocks"":20000,""state"":""blank"",""sessions"":[]}")
PutText(place.Child("drive.json"), "{""format"":1,""vendor"":""Virtual"",""product"":""CD"",""firmwareRevision"":""1.00""}")

Function NewBurn() As DRBurnQRX
    Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
    Dim burn As New DRBurnQRX(drive)
    burn.Overwrite = Not drive.mediaIsBlank
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    Return burn
End Function

' The burn's end, and whether the disc is still blank.
Sub Tell(burn As DRBurnQRX)
    Dim state As String
    Do
        App.DoEvents(10)
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    If state = DRBurnQRX.DRStatusStateFailed Then
        Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)
        Dim code As UInt32 = problem.Value(DRBurnQRX.DRErrorStatusErrorKey)
        state = Hex(code)
    End If
    Print state, DRDeviceQRX.device(0).mediaIsBlank
End Sub

Sub TellTrack(track As DRTrackQRX)
    Dim burn As DRBurnQRX = NewBurn
    burn.writeLayout(track)
    Tell(burn)
End Sub

' What the producer answers.
TellTrack(New Produced("zero", 400))     ' expect: 80020062 True
TellTrack(New Produced("too much", 400)) ' expect: 80020062 True
' A verification that finds a difference leaves a disc that openly can't be trusted.
TellTrack(New Produced("changes", 400))  ' expect: 80020063 False
For Each onDisc As DRTrackQRX In DRDeviceQRX.device(0).status.Value(DRDeviceQRX.DRDeviceTrackRefsKey)
    Print onDisc.properties.Value(DRTrackQRX.DRTrackTypeKey) ' expect: DRTrackTypeIncomplete
Next
TellTrack(New Produced("little", 400))   ' expect: DRStatusStateDone False
Print DRDeviceQRX.device(0).mediaSpaceUsed.sectors ' expect: 400

' What comes after a burn that failed finds the disc as it was.
' An object that lets itself go in its own event ends when the event does, and its burn in order.
Dim before As Integer = Produced.Ended
Produced.Current = New Produced("drops itself", 400)
Dim dropped As DRBurnQRX = NewBurn
dropped.writeLayout(Produced.Current)
Tell(dropped)                             ' expect: 80020062 False
Print Produced.Ended - before             ' expect: 1
Print DRDeviceQRX.device(0).mediaSpaceUsed.sectors ' expect: 400
Print DRDeviceQRX.device(0).mediaIsBusy   ' expect: False

' A producer is asked for one thing at a time.
Dim tested As New Produced("speed", 400)
tested.Speed = -1
TellTrack(tested)                         ' expect: DRStatusStateDone False
' expect stderr: The speed of a track can't be tested: The track is being burned
Print tested.Speed                        ' expect: 0
tested.Mode = ""
Print tested.testProductionSpeedForLength(100000) > 0 ' expect: True

' Too many tracks, and too large ones.
Dim many() As DRTrackQRX
For number As Integer = 1 To 100
    many.Append(New Produced("", 300))
Next
Dim crowded As DRBurnQRX = NewBurn
crowded.writeLayout(many)
Tell(crowded)                             ' expect: 80020065 False
TellTrack(New Produced("", 20001))        ' expect: 80020061 False

' Blocks of a size that their type doesn't have, and of none.
Dim odd As New Produced("", 300)
For Each size As Integer In Array(0, 2047, 2352)
    odd.BlockSize = size
    TellTrack(odd)
Next
' expect: 80020065 False
' expect: 80020065 False
' expect: 80020065 False

' Codes of a wrong length.
For Each length As Integer In Array(11, 13)
    Dim code As New MemoryBlock(length)
    code.StringValue(0, length) = Left("DEABC26000012", length)
    Dim marked As New Produced("", 300)
    marked.TrackISRC = code
    TellTrack(marked)
Next
' expect: 80020203 False
' expect: 80020203 False
For Each length As Integer In Array(12, 14)
    Dim number As New MemoryBlock(length)
    number.StringValue(0, length) = Left("40063813339310", length)
    Dim burn As DRBurnQRX = NewBurn
    burn.MediaCatalogNumber = number
    burn.writeLayout(New Produced("", 300))
    Tell(burn)
Next
' expect: 80020065 False
' expect: 80020065 False

' Files that are no sound make no track.
PutText(New FolderItem("empty.wav"), "")
PutText(New FolderItem("text.wav"), "no sound")
PutText(New FolderItem("cut.wav"), "RIFF....WAVEfmt ")
For Each name As String In Array("none.wav", "empty.wav", "text.wav", "cut.wav")
    Print DRTrackQRX.trackForAudioFile(New FolderItem(name)) Is Nil
Next
' expect: True
' expect: True
' expect: True
' expect: True
' expect stderr: none.wav" can't be opened
' expect stderr: empty.wav" is empty
' expect stderr: text.wav" is no sound
' expect stderr: cut.wav" is no sound

' After all of it the disc is what the last good burn made.
Print DRDeviceQRX.device(0).mediaSpaceUsed.sectors ' expect: 400
