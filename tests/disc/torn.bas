' Burns a track that goes wrong on the drive with the name that is given: its data ends too early ("ends"), or what was read
' back is not what it says it gave ("differs").
Class Torn Inherits DRTrackQRX
    Public How As String

    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        If How = "ends" And address >= 1000 Then Return 0
        Return Bufferlen
    End Event
    Event verifyDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As Boolean
        Return How <> "differs"
    End Event
End Class

Dim track As New Torn
track.How = App.Arguments(1)
Dim settings As Dictionary = track.properties
settings.Value(DRTrackQRX.DRTrackLengthKey) = 2000
settings.Value(DRTrackQRX.DRBlockSizeKey) = DRTrackQRX.kDRBlockSizeMode1Data
settings.Value(DRTrackQRX.DRBlockTypeKey) = DRTrackQRX.kDRBlockTypeMode1Data
settings.Value(DRTrackQRX.DRDataFormKey) = DRTrackQRX.kDRDataFormMode1Data
settings.Value(DRTrackQRX.DRSessionFormatKey) = DRTrackQRX.kDRSessionFormatMode1Data
settings.Value(DRTrackQRX.DRTrackModeKey) = DRTrackQRX.kDRTrackMode1Data
settings.Value(DRTrackQRX.DRVerificationTypeKey) = DRTrackQRX.DRVerificationTypeReceiveData
track.properties = settings
For Each drive As DRDeviceQRX In DRDeviceQRX.devices
    If drive.displayName <> App.Arguments(0) Then Continue
    Dim burn As New DRBurnQRX(drive)
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    burn.writeLayout(track)
    Dim state As String
    Do
        App.DoEvents(10)
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    Print state
Next
