' What an event of a track raises, whichever it is, is raised in the program and fails the burn as one whose data could not be
' made, with its text: a mistake of the program's is never told as a bad disc. A disc that is written once says then that it
' isn't whole, and one that can be written again is as it was.
' environment: DISC_DRIVES=drives
' time limit: 120
Class Torn Inherits DRTrackQRX
    Public Where As String
    Shared Log As String

    Sub Constructor(where As String, verification As String)
        Super.Constructor
        Self.Where = where
        Dim settings As Dictionary = properties
        settings.Value(DRTrackQRX.DRTrackLengthKey) = 500
        settings.Value(DRTrackQRX.DRBlockSizeKey) = DRTrackQRX.kDRBlockSizeAudio
        settings.Value(DRTrackQRX.DRBlockTypeKey) = DRTrackQRX.kDRBlockTypeAudio
        settings.Value(DRTrackQRX.DRDataFormKey) = DRTrackQRX.kDRDataFormAudio
        settings.Value(DRTrackQRX.DRSessionFormatKey) = DRTrackQRX.kDRSessionFormatAudio
        settings.Value(DRTrackQRX.DRTrackModeKey) = DRTrackQRX.kDRTrackModeAudio
        settings.Value(DRTrackQRX.DRPreGapLengthKey) = 170
        settings.Value(DRTrackQRX.DRVerificationTypeKey) = verification
        properties = settings
    End Sub

    Sub Enter(event As String)
        If InStr(Torn.Log, event) = 0 Then Torn.Log = Torn.Log + event + " "
        If Where = event Then Raise New UnsupportedOperationException("torn in " + event)
    End Sub

    Event estimateLengthOfTrack() As UInt64
        Enter("estimate")
        Return 500
    End Event
    Event prepareTrack(burn As DRBurnQRX) As Boolean
        Enter("prepare")
        Return True
    End Event
    Event producePreGapForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        Enter("pregap")
        Return Bufferlen
    End Event
    Event produceDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As UInt32
        If InStr(Torn.Log, "wanted") > 0 Then Enter("again")
        Enter("data")
        Return Bufferlen
    End Event
    Event prepareTrackForVerification() As Boolean
        Enter("wanted")
        Return True
    End Event
    Event verifyPreGapForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As Boolean
        Enter("gapread")
        Return True
    End Event
    Event verifyDataForTrack(buffer As MemoryBlock, Bufferlen As UInt32, address As UInt64, blocksize As UInt32, ByRef flags As UInt32) As Boolean
        Enter("compare")
        Return True
    End Event
    Event cleanupTrackAfterVerification() As Boolean
        Enter("seen")
        Return True
    End Event
    Event cleanupTrackAfterBurn()
        Enter("end")
    End Event
End Class

Sub PutText(file As FolderItem, text As String)
    Dim stream As TextOutputStream = TextOutputStream.Create(file)
    stream.Write(text)
    stream.Close
End Sub

GetFolderItem("drives").CreateAsFolder

' A drive with a blank disc.
Function DriveWith(kind As String) As DRDeviceQRX
    Static count As Integer
    count = count + 1
    Dim name As String = kind + Str(count)
    Dim folder As FolderItem = GetFolderItem("drives").Child(name)
    folder.CreateAsFolder
    PutText(folder.Child("medium.json"), "{""format"":1,""kind"":""" + kind + """,""capacityBlocks"":359844,""state"":""blank"",""sessions"":[]}")
    PutText(folder.Child("drive.json"), "{""format"":1,""vendor"":""Virtual"",""product"":""" + name + """,""firmwareRevision"":""1.00""}")
    For Each drive As DRDeviceQRX In DRDeviceQRX.devices
        If InStr(drive.displayName, name) > 0 Then Return drive
    Next
    Print "no drive " + name
    Quit(1)
End Function

Sub ShowDisc(drive As DRDeviceQRX)
    If drive.mediaIsBlank Then
        Print "  blank"
        Return
    End If
    For Each onDisc As DRTrackQRX In drive.status.Value(DRDeviceQRX.DRDeviceTrackRefsKey)
        Dim kind As String = onDisc.properties.Value(DRTrackQRX.DRTrackTypeKey)
        Print "  " + kind
    Next
End Sub

Sub BurnOn(drive As DRDeviceQRX, where As String, verification As String)
    Torn.Log = ""
    Dim track As New Torn(where, verification)
    Dim burn As New DRBurnQRX(drive)
    burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
    burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
    Dim raised As String
    Dim state As String
    Try
        burn.writeLayout(track) ' what the burn's thread raised may be raised here already
        While True
            App.DoEvents(10)
        Wend
    Catch e As UnsupportedOperationException
        raised = e.Message
    End Try
    Do
        Try
            App.DoEvents(10)
        Catch e As UnsupportedOperationException
        End Try
        state = burn.status.Value(DRBurnQRX.DRStatusStateKey)
    Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
    Dim problem As Dictionary = burn.status.Value(DRBurnQRX.DRErrorStatusKey)
    Dim code As UInt32 = problem.Value(DRBurnQRX.DRErrorStatusErrorKey)
    Dim info As String = problem.Value(DRBurnQRX.DRErrorStatusErrorInfoStringKey)
    If InStr(info, raised) = 0 Then Print "the status doesn't say it: " + info
    Print Hex(code) + " " + raised + ": " + Torn.Log.Trim
    ShowDisc(drive)
End Sub

Sub Try2(where As String, verification As String)
    BurnOn(DriveWith("CD-R"), where, verification)
    BurnOn(DriveWith("CD-RW"), where, verification)
End Sub

' Asked for where the program asks.
Dim estimated As New Torn("estimate", DRTrackQRX.DRVerificationTypeNone)
Try
    Print estimated.estimateLength
Catch e As UnsupportedOperationException
    Print e.Message                                          ' expect: torn in estimate
End Try

Try2("prepare", DRTrackQRX.DRVerificationTypeReceiveData)
' expect: 80020062 torn in prepare: prepare end
' expect:   blank
' expect: 80020062 torn in prepare: prepare end
' expect:   blank
Try2("pregap", DRTrackQRX.DRVerificationTypeReceiveData)
' expect: 80020062 torn in pregap: prepare pregap end
' expect:   DRTrackTypeIncomplete
' expect: 80020062 torn in pregap: prepare pregap end
' expect:   blank
Try2("data", DRTrackQRX.DRVerificationTypeReceiveData)
' expect: 80020062 torn in data: prepare pregap data end
' expect:   DRTrackTypeIncomplete
' expect: 80020062 torn in data: prepare pregap data end
' expect:   blank
Try2("wanted", DRTrackQRX.DRVerificationTypeReceiveData)
' expect: 80020062 torn in wanted: prepare pregap data wanted seen end
' expect:   DRTrackTypeIncomplete
' expect: 80020062 torn in wanted: prepare pregap data wanted seen end
' expect:   blank
Try2("again", DRTrackQRX.DRVerificationTypeProduceAgain)
' expect: 80020062 torn in again: prepare pregap data wanted again seen end
' expect:   DRTrackTypeIncomplete
' expect: 80020062 torn in again: prepare pregap data wanted again seen end
' expect:   blank
Try2("gapread", DRTrackQRX.DRVerificationTypeReceiveData)
' expect: 80020062 torn in gapread: prepare pregap data wanted gapread seen end
' expect:   DRTrackTypeIncomplete
' expect: 80020062 torn in gapread: prepare pregap data wanted gapread seen end
' expect:   blank
Try2("compare", DRTrackQRX.DRVerificationTypeReceiveData)
' expect: 80020062 torn in compare: prepare pregap data wanted gapread compare seen end
' expect:   DRTrackTypeIncomplete
' expect: 80020062 torn in compare: prepare pregap data wanted gapread compare seen end
' expect:   blank
Try2("seen", DRTrackQRX.DRVerificationTypeReceiveData)
' expect: 80020062 torn in seen: prepare pregap data wanted gapread compare seen end
' expect:   DRTrackTypeIncomplete
' expect: 80020062 torn in seen: prepare pregap data wanted gapread compare seen end
' expect:   blank

' By then the disc is whole, and stays so.
Try2("end", DRTrackQRX.DRVerificationTypeNone)
' expect: 80020062 torn in end: prepare pregap data end
' expect:   DRTrackTypeClosed
' expect: 80020062 torn in end: prepare pregap data end
' expect:   DRTrackTypeClosed
