' What nobody catches in a track's event ends the burn and the program, and is told with its class, its message and the line
' of the event that raised it.
' environment: DISC_DRIVES=drives
Class Produced Inherits DRTrackQRX
    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        If address >= 300 Then
            Raise New UnsupportedOperationException("no bytes today") ' expect error: UnsupportedOperationException: no bytes today
        End If
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
