' Shows every drive, what it can write, and what is in it.
'
'   disc-basic list-drives.bas

' The constants' texts are their names: the last word is what people say.
Function Spoken(constant As String, prefix As String) As String
    Dim text As String = Replace(constant, prefix, "")
    text = Replace(text, "Plus", "+")
    text = Replace(text, "DualLayer", " DL")
    text = Replace(text, "DoubleLayer", " DL")
    ' "DVDR" is a DVD-R, "CDROM" a CD-ROM; what has a plus has its sign already.
    For Each family As String In Array("CD", "DVD", "BD")
        If text.BeginsWith(family) And Not text.BeginsWith(family + "+") Then
            Return family + "-" + Mid(text, Len(family) + 1)
        End If
    Next
    Return text
End Function

Function Size(blocks As Double) As String
    If blocks * 2048 >= 1000000000 Then Return Format(blocks * 2048 / 1000000000, "0.00") + " GB"
    Return Format(blocks * 2048 / 1000000, "0.0") + " MB"
End Function

Sub Fact(name As String, text As String)
    Dim blanks As String = "             "
    Print "  " + name + Left(blanks, Max(1, 12 - Len(name))) + text
End Sub

' What a dictionary says, or "" where a drive doesn't know.
Function TextOf(d As Dictionary, key As String) As String
    If d Is Nil Or Not d.HasKey(key) Then Return ""
    Return d.Value(key)
End Function

' The kinds of disc that a drive can write, from the whole table of its abilities.
Function Writable(drive As DRDeviceQRX) As String
    Dim abilities As Dictionary = drive.info.Value(DRDeviceQRX.DRDeviceWriteCapabilitiesKey)
    Dim keys() As String = Array(DRDeviceQRX.DRDeviceCanWriteCDRKey, DRDeviceQRX.DRDeviceCanWriteCDRWKey, _
        DRDeviceQRX.DRDeviceCanWriteDVDRKey, DRDeviceQRX.DRDeviceCanWriteDVDRDualLayerKey, _
        DRDeviceQRX.DRDeviceCanWriteDVDRWKey, DRDeviceQRX.DRDeviceCanWriteDVDRAMKey, _
        DRDeviceQRX.DRDeviceCanWriteDVDPlusRKey, DRDeviceQRX.DRDeviceCanWriteDVDPlusRDoubleLayerKey, _
        DRDeviceQRX.DRDeviceCanWriteDVDPlusRWKey, DRDeviceQRX.DRDeviceCanWriteBDRKey, _
        DRDeviceQRX.DRDeviceCanWriteBDREKey)
    Dim names() As String
    For Each key As String In keys
        If abilities.HasKey(key) Then
            If abilities.Value(key) Then names.Append(Spoken(Replace(key, "Key", ""), "DRDeviceCanWrite"))
        End If
    Next
    Return Join(names, ", ")
End Function

' Whether a burn has left a track behind that it couldn't end.
Function IsCutOff(drive As DRDeviceQRX) As Boolean
    If Not drive.status.HasKey(DRDeviceQRX.DRDeviceTrackRefsKey) Then Return False
    For Each track As DRTrackQRX In drive.status.Value(DRDeviceQRX.DRDeviceTrackRefsKey)
        If track.properties.Value(DRTrackQRX.DRTrackTypeKey) = DRTrackQRX.DRTrackTypeIncomplete Then Return True
    Next
    Return False
End Function

Sub ShowMedium(drive As DRDeviceQRX)
    If drive.trayIsOpen Then
        Fact("Tray", "open")
        Return
    End If
    If Not drive.mediaIsPresent Then
        Fact("Medium", "none")
        Return
    End If
    Dim can() As String
    If drive.mediaIsBlank Then can.Append("blank")
    If drive.mediaIsAppendable And Not drive.mediaIsBlank Then can.Append("can be appended to")
    If drive.mediaIsOverwritable And Not drive.mediaIsBlank Then can.Append("can be overwritten")
    If drive.mediaIsErasable Then can.Append("can be erased")
    If IsCutOff(drive) Then can.Append("incomplete, because its burn was stopped or failed")
    If can.Count = 0 Then can.Append("can only be read")
    Fact("Medium", Spoken(drive.mediaType, "DRDeviceMediaType") + ": " + Join(can, ", "))
    Fact("Room", Size(drive.mediaSpaceUsed.sectors) + " used, " + Size(drive.mediaSpaceFree.sectors) + " free")
    If drive.mediaIsBusy Then Fact("In use", "by a program")
End Sub

Dim drives() As DRDeviceQRX = DRDeviceQRX.devices
If drives.Count = 0 Then Print "There is no drive that can write discs; disc-drives list names those in use."
For Each drive As DRDeviceQRX In drives
    Print drive.displayName
    Fact("Revision", TextOf(drive.info, DRDeviceQRX.DRDeviceFirmwareRevisionKey))
    Fact("Connected", Spoken(drive.PhysicalInterconnect, "DRDevicePhysicalInterconnect") + ", " + _
        Lowercase(Spoken(TextOf(drive.info, DRDeviceQRX.DRDevicePhysicalInterconnectLocationKey), "DRDevicePhysicalInterconnectLocation")))
    Fact("Writes", Writable(drive))
    Fact("Where", drive.ioRegistryEntryPath)
    ShowMedium(drive)
Next
