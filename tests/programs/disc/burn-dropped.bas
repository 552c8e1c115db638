' A burn that the program lets go of while a track is still being prepared: the event has the burn to the end of its call,
' then nobody has. The burn ends, nothing was written, and the drive takes the next one.
' environment: DISC_DRIVES=drives
' time limit: 120
Class Slow Inherits DRTrackQRX
    Public Begun As Boolean
    Public Dropped As Boolean
    Public State As String
    Public Produced As Boolean
    Public CleanedUp As Boolean
    Shared Ended As Integer

    Sub Constructor()
        Super.Constructor
        Dim settings As Dictionary = properties
        settings.Value(DRTrackQRX.DRTrackLengthKey) = 2000
        settings.Value(DRTrackQRX.DRBlockSizeKey) = DRTrackQRX.kDRBlockSizeDVDData
        settings.Value(DRTrackQRX.DRBlockTypeKey) = DRTrackQRX.kDRBlockTypeDVDData
        settings.Value(DRTrackQRX.DRDataFormKey) = DRTrackQRX.kDRDataFormDVDData
        settings.Value(DRTrackQRX.DRSessionFormatKey) = DRTrackQRX.kDRSessionFormatDVDData
        settings.Value(DRTrackQRX.DRTrackModeKey) = DRTrackQRX.kDRTrackModeDVDData
        properties = settings
    End Sub
    Sub Destructor()
        Slow.Ended = Slow.Ended + 1
    End Sub

    Event prepareTrack(burn As DRBurnQRX) As Boolean
        Begun = True
        While Not Dropped
            Sleep(2)
        Wend
        Sleep(20)
        State = burn.status.Value(DRBurnQRX.DRStatusStateKey)
        Return True
    End Event
    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        Produced = True
        Return Bufferlen
    End Event
    Event cleanupTrackAfterBurn()
        CleanedUp = True
    End Event
End Class

Function NewBurn() As DRBurnQRX
    Dim burn As New DRBurnQRX(DRDeviceQRX.device(0))
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    Return burn
End Function

Sub WaitForDrive()
    Dim waited As Integer
    While DRDeviceQRX.device(0).mediaIsBusy And waited < 2000
        App.DoEvents(10)
        waited += 1
    Wend
End Sub

' Whether it was cut off before anything was asked for, and cleaned up.
Function DropsInTime() As Boolean
    Dim track As New Slow
    Dim burn As DRBurnQRX = NewBurn
    burn.writeLayout(track)
    While Not track.Begun
        App.DoEvents(1)
    Wend
    burn = Nil
    track.Dropped = True
    While Not track.CleanedUp
        App.DoEvents(1)
    Wend
    WaitForDrive
    Return track.State = DRBurnQRX.DRStatusStatePreparing And Not track.Produced
End Function

Dim whole As Integer
For round As Integer = 1 To 5
    If DropsInTime Then whole += 1
Next
Print whole                              ' expect: 5
Print DRDeviceQRX.device(0).mediaIsBlank ' expect: True
Print DRDeviceQRX.device(0).mediaIsBusy  ' expect: False

Dim last As New Slow
last.Dropped = True
Dim burn As DRBurnQRX = NewBurn
burn.writeLayout(last)
Dim state As String
Do
    App.DoEvents(10)
    state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
Print state                              ' expect: DRStatusStateDone
burn = Nil
last = Nil
App.DoEvents(10)
Print Slow.Ended                         ' expect: 6
