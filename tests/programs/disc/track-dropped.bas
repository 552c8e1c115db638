' A track that a program made may end before the platform's own, which was refused before it was asked for an event.
' environment: DISC_DRIVES=drives
Class Produced Inherits DRTrackQRX
    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        Return Bufferlen
    End Event
End Class

Function RefusedBurn() As DRBurnQRX
    Dim track As New Produced
    Dim isrc As New MemoryBlock(11)
    isrc.StringValue(0, 11) = "USPR3730001"
    track.TrackISRC = isrc
    track.BlockSize = DRTrackQRX.kDRBlockSizeAudio
    Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    burn.writeLayout(track)
    Do
        App.DoEvents(10)
    Loop Until burn.status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateFailed
    Return burn
End Function

For round As Integer = 1 To 50
    Dim burn As DRBurnQRX = RefusedBurn() ' the track has ended, and the platform's is still the burn's
    burn = Nil
Next
Print DRDeviceQRX.device(0).mediaIsBlank ' expect: True
