' A song with pictures: a track whose event brings 96 symbols behind each block, and what the disc then has of them.
' environment: DISC_DRIVES=drives
' time limit: 120
Class Singer Inherits DRTrackQRX
    Public Shown As String
    Public Compared As Integer

    Sub Constructor()
        Super.Constructor
        Dim settings As Dictionary = properties
        settings.Value(DRTrackQRX.DRTrackLengthKey) = 400
        settings.Value(DRTrackQRX.DRBlockSizeKey) = DRTrackQRX.kDRBlockSizeAudio
        settings.Value(DRTrackQRX.DRBlockTypeKey) = DRTrackQRX.kDRBlockTypeAudio
        settings.Value(DRTrackQRX.DRDataFormKey) = DRTrackQRX.kDRDataFormAudio
        settings.Value(DRTrackQRX.DRSessionFormatKey) = DRTrackQRX.kDRSessionFormatAudio
        settings.Value(DRTrackQRX.DRTrackModeKey) = DRTrackQRX.kDRTrackModeAudio
        settings.Value(DRTrackQRX.DRVerificationTypeKey) = DRTrackQRX.DRVerificationTypeReceiveData
        settings.Value(DRTrackQRX.DRSubchannelDataFormKey) = DRTrackQRX.DRSubchannelDataFormRaw
        properties = settings
    End Sub

    Sub Note(word As String)
        If InStr(Shown, word) = 0 Then Shown = Shown + word + " "
    End Sub

    ' One symbol of each block is another one than zero: which, and what it is, depends on the block.
    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        Note("size" + Str(blocksize))
        Note("rest" + Str(Bufferlen Mod blocksize))
        Note("subchannel" + Str((flags \ DRTrackQRX.DRFlagSubchannelDataRequested) Mod 2))
        Dim blank As New MemoryBlock(Bufferlen)
        buffer.StringValue(0, Bufferlen) = blank.StringValue(0, Bufferlen)
        For i As Integer = 0 To Bufferlen \ blocksize - 1
            Dim block As Integer = address + i
            buffer.UInt32Value(i * blocksize) = block
            buffer.UInt8Value(i * blocksize + 2352 + block Mod 96) = block Mod 64
        Next
        Return Bufferlen
    End Event
    Event verifyDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As Boolean
        For i As Integer = 0 To Bufferlen \ blocksize - 1
            Dim block As Integer = address + i
            If buffer.UInt32Value(i * blocksize) <> block Then Return False
            If buffer.UInt8Value(i * blocksize + 2352 + block Mod 96) <> block Mod 64 Then Return False
            Compared += 1
        Next
        Return blocksize = 2448 And flags = DRTrackQRX.DRFlagSubchannelDataRequested
    End Event
End Class

Sub PutText(file As FolderItem, text As String)
    Dim stream As TextOutputStream = TextOutputStream.Create(file)
    stream.Write(text)
    stream.Close
End Sub
Function NewDrive(name As String, kind As String, capacity As String) As DRDeviceQRX
    Dim folder As FolderItem = GetFolderItem("drives").Child(name)
    folder.CreateAsFolder
    PutText(folder.Child("medium.json"), "{""format"":1,""kind"":""" + kind + """,""capacityBlocks"":" + capacity + ",""state"":""blank"",""sessions"":[]}")
    PutText(folder.Child("drive.json"), "{""format"":1,""vendor"":""Virtual"",""product"":""" + name + """,""firmwareRevision"":""1.00""}")
    For Each drive As DRDeviceQRX In DRDeviceQRX.devices
        If drive.displayName = "Virtual " + name Then Return drive
    Next
End Function

Sub BurnOn(drive As DRDeviceQRX, track As DRTrackQRX)
    Dim burn As New DRBurnQRX(drive)
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    burn.writeLayout(track)
    Dim state As String
    Do
        App.DoEvents(10)
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    If state = DRBurnQRX.DRStatusStateDone Then
        Print "done"
    Else
        Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)
        Dim code As UInt32 = problem.Value(DRBurnQRX.DRErrorStatusErrorKey)
        Print Hex(code) + ": " + problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey)
    End If
End Sub

GetFolderItem("drives").CreateAsFolder
Dim drive As DRDeviceQRX = NewDrive("stage", "CD-R", "359847")
Dim song As New Singer
BurnOn(drive, song)                                          ' expect: done
Print song.Shown.Trim                                        ' expect: size2448 rest0 subchannel1
Print song.Compared                                          ' expect: 400
For Each onDisc As DRTrackQRX In drive.status.Value(DRDeviceQRX.DRDeviceTrackRefsKey)
    Print onDisc.properties.Value(DRTrackQRX.DRSubchannelDataFormKey), onDisc.properties.Value(DRTrackQRX.DRBlockSizeKey)
Next                                                         ' expect: DRSubchannelDataFormRaw 2352

' The medium's file has the channels of a sector one after the other, 12 bytes each: P, Q, and then R to W.
Dim stream As BinaryStream = BinaryStream.Open(GetFolderItem("drives").Child("stage").Child("medium.sub"))
Print stream.Length                                          ' expect: 38400
Dim channels As New MemoryBlock(38400)
channels.StringValue(0, 38400) = stream.Read(38400)
stream.Close
Dim right As Integer
For block As Integer = 0 To 399
    Dim place As Integer = block Mod 96
    Dim symbol As Integer = 0
    For channel As Integer = 2 To 7
        Dim row As Integer = channels.UInt8Value(block * 96 + channel * 12 + place \ 8)
        Dim weight As Integer = 1
        For bit As Integer = 1 To 7 - place Mod 8
            weight = weight * 2
        Next
        symbol = symbol * 2 + (row \ weight) Mod 2
    Next
    If symbol = block Mod 64 Then right += 1
Next
Print right                                                  ' expect: 400

' A DVD has no place for them.
Dim other As DRDeviceQRX = NewDrive("screen", "DVD+RW", "2295104")
Dim data As New Singer
Dim settings As Dictionary = data.properties
settings.Value(DRTrackQRX.DRBlockSizeKey) = DRTrackQRX.kDRBlockSizeDVDData
settings.Value(DRTrackQRX.DRBlockTypeKey) = DRTrackQRX.kDRBlockTypeDVDData
settings.Value(DRTrackQRX.DRDataFormKey) = DRTrackQRX.kDRDataFormDVDData
settings.Value(DRTrackQRX.DRTrackModeKey) = DRTrackQRX.kDRTrackModeDVDData
data.properties = settings
BurnOn(other, data)
' expect: 80020067: Track 1 brings subchannel data, which a DVD+RW can't take; burn it without.
Print other.mediaIsBlank                                     ' expect: True
