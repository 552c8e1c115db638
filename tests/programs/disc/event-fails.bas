' A mistake in an event is told as one that was raised: with its class and its line. Here the event is one of those that are
' asked before anything is written.
' environment: DISC_DRIVES=drives
Class Produced Inherits DRTrackQRX
    Event prepareTrack(burn As DRBurnQRX) As Boolean
        Dim none As MemoryBlock
        none.UInt8Value(0) = 1 ' expect error: NilObjectException: the object whose 'UInt8Value' is asked for is nil
        Return True
    End Event
    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        Return Bufferlen
    End Event
End Class

Dim track As New Produced
Dim settings As Dictionary = track.properties
settings.Value(DRTrackQRX.DRTrackLengthKey) = 2000
settings.Value(DRTrackQRX.DRBlockSizeKey) = DRTrackQRX.kDRBlockSizeDVDData
settings.Value(DRTrackQRX.DRBlockTypeKey) = DRTrackQRX.kDRBlockTypeDVDData
settings.Value(DRTrackQRX.DRDataFormKey) = DRTrackQRX.kDRDataFormDVDData
settings.Value(DRTrackQRX.DRSessionFormatKey) = DRTrackQRX.kDRSessionFormatDVDData
settings.Value(DRTrackQRX.DRTrackModeKey) = DRTrackQRX.kDRTrackModeDVDData
track.properties = settings
Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
burn.writeLayout(track)
Do
    App.DoEvents(10)
Loop
