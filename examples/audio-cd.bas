' Burns sound files as an audio CD. Titles, performers and ISRC codes come from the files' tags (comments in FLAC and Ogg,
' ID3v2 in MP3, WAV and AIFF, what WAV and AIFF say themselves) and go onto the disc as CD-Text and codes; without tags a
' track is named after its file.
'
'   disc-basic audio-cd.bas [OPTIONS] FILE …
'
'   --title=TITLE       the disc's title (default: the first file's album)
'   --performer=NAME    the disc's performer (default: the first file's artist)
'   --gap=SECONDS       silence between tracks (default: none)
'   --drive=NAME        the drive, by its folder's name or the one it shows (default: the first one)
'
' A re-writable disc that holds data is overwritten.

Const Usage = "Usage: audio-cd.bas [--title=TITLE] [--performer=NAME] [--gap=SECONDS] [--drive=NAME] FILE …"

Sub Fail(message As String)
    StdErr.WriteLine("audio-cd: " + message)
    Quit(1)
End Sub

' The drive that a person means: by the name of its folder, its path, or the name that it shows. "" is the first one.
Function DriveNamed(name As String) As DRDeviceQRX
    Dim shown() As DRDeviceQRX
    For Each drive As DRDeviceQRX In DRDeviceQRX.devices
        Dim place As FolderItem = GetFolderItem(drive.ioRegistryEntryPath)
        If name = "" Or StrComp(name, place.Name, 0) = 0 Or StrComp(name, place.NativePath, 0) = 0 Then Return drive
        If StrComp(name, drive.displayName, 0) = 0 Then shown.Append(drive)
    Next
    If name = "" Then Fail("there is no drive that can write discs; disc-drives list names those in use")
    If shown.Count = 0 Then Fail("there is no drive " + name + "; list-drives.bas shows which there are")
    If shown.Count > 1 Then Fail("several drives are called " + name + "; take a path that list-drives.bas shows")
    Return shown(0)
End Function

' How a disc gets into a drive: a command for a virtual one, a hand for a recorder.
Function HowToInsert(drive As DRDeviceQRX, kind As String) As String
    Dim place As FolderItem = GetFolderItem(drive.ioRegistryEntryPath)
    If Not place.Directory Then Return " and try again"
    Return " with: disc-drives blank-medium " + kind + " blank.medium && disc-drives insert '" + _
        ReplaceAll(place.Name, "'", "'\''") + "' blank.medium"
End Function

' ---- what a file says about itself --------------------------------------------------------------------------

Class Tags
    Title As String
    Performer As String
    Album As String
    ISRC As String
    Private mFile As String

    Sub Constructor(file As FolderItem)
        mFile = file.Name
        Dim stream As BinaryStream = BinaryStream.Open(file)
        Select Case LeftB(stream.Read(4), 4)
        Case "fLaC"
            ReadFLAC(stream)
        Case "OggS"
            ReadOgg(stream)
        Case "RIFF"
            ReadChunks(stream, False)
        Case "FORM"
            ReadChunks(stream, True)
        Else
            ReadID3(stream, 0)
        End Select
        If Title = "" Then Title = NameWithoutEnding(file.Name)
    End Sub

    Private Function NameWithoutEnding(name As String) As String
        Dim parts() As String = Split(name, ".")
        If parts.LastIndex > 0 Then parts.Remove(parts.LastIndex)
        Return Join(parts, ".")
    End Function

    ' Where a name has several values, as a song of two artists, all of them count; a code can be one only.
    Private Sub Add(values As Dictionary, name As String, value As String)
        If value = "" Then Return
        If Not values.HasKey(name) Then
            values.Value(name) = value
        ElseIf name <> "ISRC" And name <> "TSRC" Then
            values.Value(name) = values.Value(name) + ", " + value
        End If
    End Sub

    Private Sub TakeAll(values As Dictionary)
        For Each name As Variant In values.Keys
            Take(name, values.Value(name))
        Next
    End Sub

    Private Sub Take(name As String, value As String)
        If value = "" Then Return
        Select Case name
        Case "TITLE", "TIT2", "INAM", "NAME"
            Title = value
        Case "ARTIST", "TPE1", "IART", "AUTH"
            Performer = value
        Case "ALBUM", "TALB", "IPRD"
            Album = value
        Case "ISRC", "TSRC"
            Dim code As String = Uppercase(ReplaceAll(value, "-", ""))
            If IsCode(code) Then
                ISRC = code
            ElseIf code <> "" Then
                StdErr.WriteLine("audio-cd: " + mFile + " is burned without its ISRC, which is no code: " + value)
            End If
        End Select
    End Sub

    ' Two letters for the country, three letters or digits for the owner, two digits for the year and five more.
    Private Function IsCode(code As String) As Boolean
        If LenB(code) <> 12 Then Return False
        For i As Integer = 1 To 12
            Dim byte As Integer = AscB(MidB(code, i, 1))
            Dim isDigit As Boolean = byte >= 48 And byte <= 57
            Dim isLetter As Boolean = byte >= 65 And byte <= 90
            If Not ((isLetter And i <= 5) Or (isDigit And i > 2)) Then Return False
        Next
        Return True
    End Function

    ' Metadata blocks: a byte for the kind, its top bit on the last one, and three for the length. Kind 4 holds comments.
    Private Sub ReadFLAC(stream As BinaryStream)
        Dim kind As Integer
        Do
            Dim head As String = stream.Read(4)
            If LenB(head) < 4 Then Return
            kind = AscB(head)
            Dim body As String = stream.Read(Number(MidB(head, 2, 3)))
            If (kind And 127) = 4 Then TakeComments(body)
        Loop Until kind >= 128
    End Sub

    ' Texts of the form NAME=value, each behind its length; in front of them who wrote them, and how many there are. A length
    ' that leads behind the end, or is negative because it doesn't fit, ends the search.
    Private Sub TakeComments(body As String)
        Dim values As New Dictionary
        Dim length As Integer = LittleNumber(LeftB(body, 4))
        If length < 0 Or length > LenB(body) - 8 Then Return
        Dim at As Integer = 9 + length
        Dim count As Integer = LittleNumber(MidB(body, at - 4, 4))
        For i As Integer = 1 To count
            If at + 3 > LenB(body) Then Exit For
            length = LittleNumber(MidB(body, at, 4))
            If length < 0 Or length > LenB(body) - at - 3 Then Exit For
            Dim text As String = DefineEncoding(MidB(body, at + 4, length), Encodings.UTF8)
            Dim name As String = NthField(text, "=", 1)
            Add(values, Uppercase(name), Mid(text, Len(name) + 2))
            at += 4 + length
        Next
        TakeAll(values)
    End Sub

    ' Pages of at most 255 pieces, whose sizes stand in front; a piece of less than 255 bytes ends a packet, which may have
    ' begun on a page before. The second packet holds the comments.
    Private Sub ReadOgg(stream As BinaryStream)
        Dim packet As String
        Dim ended As Integer
        stream.Position = 0
        Do
            Dim head As String = stream.Read(27)
            If LenB(head) < 27 Or LeftB(head, 4) <> "OggS" Then Return
            Dim sizes As String = stream.Read(AscB(MidB(head, 27, 1)))
            Dim together As Integer = 0
            For i As Integer = 1 To LenB(sizes)
                Dim size As Integer = AscB(MidB(sizes, i, 1))
                together += size
                If size = 255 And i < LenB(sizes) Then Continue
                packet = packet + stream.Read(together)
                together = 0
                If size = 255 Then Continue
                ended += 1
                If ended = 2 Then
                    If MidB(packet, 2, 6) = "vorbis" Then TakeComments(MidB(packet, 8))
                    If LeftB(packet, 8) = "OpusTags" Then TakeComments(MidB(packet, 9))
                    Return
                End If
                packet = ""
            Next
        Loop
    End Sub

    ' Chunks: four letters, four bytes of length (the first one last in WAV, first in AIFF), and as many bytes, or one more
    ' to be even. WAV has its texts in one more row of chunks; what the ISRC says there is where the sound came from. An ID3
    ' tag, which knows more, comes last.
    Private Sub ReadChunks(stream As BinaryStream, isAIFF As Boolean)
        Dim tagAt As Int64
        Dim at As Int64 = 12
        While at + 8 <= stream.Length
            stream.Position = at
            Dim name As String = Uppercase(DefineEncoding(stream.Read(4), Encodings.ASCII))
            Dim bytes As String = stream.Read(4)
            Dim length As Integer = LittleNumber(bytes)
            If isAIFF Then length = Number(bytes)
            If length < 0 Or length > stream.Length Then Exit While
            Select Case name
            Case "LIST"
                If stream.Read(4) = "INFO" Then length = 4
            Case "INAM", "IART", "IPRD"
                If Not isAIFF Then Take(name, PlainText(stream.Read(length)))
            Case "NAME", "AUTH"
                If isAIFF Then Take(name, PlainText(stream.Read(length)))
            Case "ID3 "
                tagAt = at + 8
            End Select
            at += 8 + length + length Mod 2
        Wend
        If tagAt > 0 Then ReadID3(stream, tagAt)
    End Sub

    ' Nothing says what characters these texts have: UTF-8 where that is possible, else Latin-1.
    Private Function PlainText(bytes As String) As String
        Dim zero As Integer = InStrB(bytes, ChrB(0))
        If zero > 0 Then bytes = LeftB(bytes, zero - 1)
        Dim following As Integer
        For i As Integer = 1 To LenB(bytes)
            Dim byte As Integer = AscB(MidB(bytes, i, 1))
            If (following > 0) <> (byte >= 128 And byte < 192) Then Exit For
            If following > 0 Then
                following -= 1
            ElseIf byte >= 192 Then
                following = 1
                If byte >= 224 Then following += 1
                If byte >= 240 Then following += 1
            End If
            If i = LenB(bytes) And following = 0 Then Return DefineEncoding(bytes, Encodings.UTF8)
        Next
        Return ConvertEncoding(DefineEncoding(bytes, Encodings.ISOLatin1), Encodings.UTF8)
    End Function

    ' Frames: four letters, four bytes of length, two of flags; the text behind a byte for its encoding. A tag may have a zero
    ' behind each byte 255, so that no player takes it for sound: the whole tag, since version 4 each frame, which then may
    ' have four bytes more in front. A length that leads behind the end, or is negative because it doesn't fit, ends the search.
    Private Sub ReadID3(stream As BinaryStream, start As Int64)
        stream.Position = start
        Dim head As String = stream.Read(10)
        If LeftB(head, 3) <> "ID3" Or LenB(head) < 10 Then Return
        Dim size As Integer = SafeNumber(MidB(head, 7, 4))
        If size < 0 Then Return
        Dim body As String = stream.Read(size)
        Dim isFour As Boolean = AscB(MidB(head, 4, 1)) >= 4
        Dim hasZeros As Boolean = (AscB(MidB(head, 6, 1)) And 128) <> 0
        If hasZeros And Not isFour Then body = WithoutZeros(body)
        Dim values As New Dictionary
        Dim at As Integer = 1
        While at + 10 <= LenB(body) And AscB(MidB(body, at, 1)) <> 0
            Dim length As Integer = Number(MidB(body, at + 4, 4))
            If isFour Then length = SafeNumber(MidB(body, at + 4, 4))
            If length < 0 Or length > LenB(body) - at - 9 Then Exit While
            Dim text As String = MidB(body, at + 10, length)
            If isFour Then
                Dim flags As Integer = AscB(MidB(body, at + 9, 1))
                If (flags And 1) <> 0 Then text = MidB(text, 5)
                If hasZeros Or (flags And 2) <> 0 Then text = WithoutZeros(text)
            End If
            If text <> "" Then AddTexts(values, LeftB(MidB(body, at, 4), 4), AscB(text), MidB(text, 2))
            at += 10 + length
        Wend
        TakeAll(values)
    End Sub

    ' A zero stands between texts and may stand behind the last; in UTF-16 each may have a mark of its own.
    Private Sub AddTexts(values As Dictionary, name As String, kind As Integer, text As String)
        Select Case kind
        Case 0
            text = DefineEncoding(text, Encodings.ISOLatin1)
        Case 1
            text = MarkedText(text)
        Case 2
            text = DefineEncoding(Swapped(text), Encodings.UTF16)
        Case 3
            text = DefineEncoding(text, Encodings.UTF8)
        Else
            Return
        End Select
        For Each part As String In Split(ConvertEncoding(text, Encodings.UTF8), Chr(0))
            If part <> "" And Asc(part) = 65279 Then part = Mid(part, 2)
            Add(values, name, part)
        Next
    End Sub

    Private Function WithoutZeros(bytes As String) As String
        Dim result As String
        Do
            Dim found As Integer = InStrB(bytes, ChrB(255) + ChrB(0))
            If found = 0 Then Return result + bytes
            result = result + LeftB(bytes, found)
            bytes = MidB(bytes, found + 2)
        Loop
    End Function

    ' UTF-16 behind a mark that tells which byte of a character stands first.
    Private Function MarkedText(bytes As String) As String
        If LenB(bytes) < 2 Then Return ""
        If AscB(bytes) = 254 Then bytes = Swapped(bytes)
        If AscB(bytes) = 255 Then bytes = MidB(bytes, 3)
        Return DefineEncoding(bytes, Encodings.UTF16)
    End Function

    Private Function Swapped(bytes As String) As String
        Dim result As String
        For i As Integer = 1 To LenB(bytes) - 1 Step 2
            result = result + MidB(bytes, i + 1, 1) + MidB(bytes, i, 1)
        Next
        Return result
    End Function

    Private Function Number(bytes As String) As Integer
        Dim result As Integer
        For i As Integer = 1 To LenB(bytes)
            result = result * 256 + AscB(MidB(bytes, i, 1))
        Next
        Return result
    End Function

    Private Function LittleNumber(bytes As String) As Integer
        Dim result As Integer
        For i As Integer = LenB(bytes) DownTo 1
            result = result * 256 + AscB(MidB(bytes, i, 1))
        Next
        Return result
    End Function

    ' Seven bits in each byte.
    Private Function SafeNumber(bytes As String) As Integer
        Dim result As Integer
        For i As Integer = 1 To LenB(bytes)
            result = result * 128 + AscB(MidB(bytes, i, 1))
        Next
        Return result
    End Function
End Class

' ---- what to burn -------------------------------------------------------------------------------------------

Dim files() As FolderItem
Dim driveName As String
Dim discTitle As String
Dim discPerformer As String
Dim gap As Double
For Each argument As String In App.Arguments
    Dim word As String = NthField(argument, "=", 1)
    Dim value As String = Mid(argument, Len(word) + 2)
    If word = "--title" Then
        discTitle = value
    ElseIf word = "--performer" Then
        discPerformer = value
    ElseIf word = "--gap" And (value = "0" Or Val(value) > 0) Then
        gap = Val(value)
    ElseIf word = "--drive" And value <> "" Then
        driveName = value
    ElseIf argument.BeginsWith("--") Then
        StdErr.WriteLine(Usage)
        Quit(2)
    Else
        Dim file As FolderItem = GetFolderItem(argument)
        If file Is Nil Or Not file.Exists Then Fail("there is no file " + argument)
        files.Append(file)
    End If
Next
If files.LastIndex < 0 Then
    StdErr.WriteLine(Usage)
    Quit(2)
End If
If files.LastIndex > 98 Then Fail("a CD has at most 99 tracks, and here are " + Str(files.LastIndex + 1) + " files")

' A text of the sheet ends with its line and may hold quotation marks. Characters that are no text, like ends of
' lines, become blanks.
Function Quoted(text As String) As String
    Return """" + WithoutControls(text) + """"
End Function

Function WithoutControls(text As String) As String
    For code As Integer = 0 To 31
        text = ReplaceAll(text, Chr(code), " ")
    Next
    Return ReplaceAll(text, Chr(127), " ")
End Function

' The file must be found again, so its name can't be changed as a title can.
Function QuotedPath(file As FolderItem) As String
    Dim path As String = file.NativePath
    If InStr(path, Chr(10)) > 0 Or InStr(path, Chr(13)) > 0 Then
        Fail("the path of " + WithoutControls(file.Name) + " has an end of a line in it; rename the file or its folder")
    End If
    Return """" + path + """"
End Function

Function Clock(blocks As Integer) As String
    Return Format(blocks \ 4500, "00") + ":" + Format((blocks \ 75) Mod 60, "00") + ":" + Format(blocks Mod 75, "00")
End Function

Dim lines() As String
For i As Integer = 0 To files.LastIndex
    Dim track As DRTrackQRX = DRTrackQRX.trackForAudioFile(files(i))
    If track Is Nil Then Fail(files(i).NativePath + " is no sound file that can be read")
    Dim tags As New Tags(files(i))
    If i = 0 And discTitle = "" Then discTitle = tags.Album
    If i = 0 And discPerformer = "" Then discPerformer = tags.Performer
    lines.Append("FILE " + QuotedPath(files(i)) + " WAVE")
    lines.Append("  TRACK " + Format(i + 1, "00") + " AUDIO")
    lines.Append("    TITLE " + Quoted(tags.Title))
    If tags.Performer <> "" Then lines.Append("    PERFORMER " + Quoted(tags.Performer))
    If tags.ISRC <> "" Then lines.Append("    ISRC " + tags.ISRC)
    If i > 0 And gap > 0 Then lines.Append("    PREGAP " + Clock(Round(gap * 75)))
    lines.Append("    INDEX 01 00:00:00")
    Print Format(i + 1, "00") + "  " + track.Length.description + "  " + WithoutControls(tags.Title)
Next
If discTitle <> "" Then lines.Insert(0, "TITLE " + Quoted(discTitle))
If discPerformer <> "" Then lines.Insert(0, "PERFORMER " + Quoted(discPerformer))

' ---- where to -----------------------------------------------------------------------------------------------

Dim drive As DRDeviceQRX = DriveNamed(driveName)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then
    Fail("there is no disc in " + drive.displayName + "; insert one" + HowToInsert(drive, "CD-RW"))
End If
If Not drive.mediaType.BeginsWith("DRDeviceMediaTypeCD") Then
    Fail("an audio CD needs a CD-R or CD-RW; insert one" + HowToInsert(drive, "CD-RW"))
End If
If Not drive.mediaIsBlank And Not drive.mediaIsOverwritable Then
    Fail("the disc in " + drive.displayName + " holds data and can't be overwritten; insert a blank one" + HowToInsert(drive, "CD-RW"))
End If

Dim burn As New DRBurnQRX(drive)
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
If Not drive.mediaIsBlank Then
    Print "The disc in " + drive.displayName + " holds data, which is overwritten."
    burn.Overwrite = True
End If

' ---- burn ---------------------------------------------------------------------------------------------------

' The sheet says it all: tracks, gaps, texts and codes. It is gone when the program ends.
Class Sheet
    File As FolderItem

    Sub Constructor(lines() As String)
        Dim temporary As String = System.EnvironmentVariable("TMPDIR")
        If temporary = "" Then temporary = "/tmp" ' an empty path is the folder that the program is run in
        File = GetFolderItem(temporary)
        If File Is Nil Or Not File.Directory Then File = GetFolderItem("/tmp")
        File = File.Child("audio-cd-" + Str(Floor(Microseconds)) + ".cue")
        Dim stream As TextOutputStream = TextOutputStream.Create(File)
        For Each line As String In lines
            stream.WriteLine(line)
        Next
        stream.Close
    End Sub
    Sub Destructor()
        File.Delete
    End Sub
End Class

Dim sheet As New Sheet(lines)
If Not burn.writeImageFile(sheet.File) Then Fail("the tracks can't be burned as one disc")

Dim status As Dictionary
Dim state As String
Dim shown As String
Do
    App.DoEvents(50)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
    Dim now As String
    If state = DRBurnQRX.DRStatusStateTrackWrite Then
        now = "Writing track " + Str(status.Value(DRBurnQRX.DRStatusCurrentTrackKey)) + " of " + _
            Str(status.Value(DRBurnQRX.DRStatusTotalTracksKey))
    ElseIf state = DRBurnQRX.DRStatusStateVerifying Then
        now = "Verifying"
    End If
    If now <> "" And now <> shown Then Print now + " …"
    If now <> "" Then shown = now
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed

If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Fail(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
End If
Dim amount As String = " tracks, "
If files.LastIndex = 0 Then amount = " track, "
Print "Burned " + Str(files.LastIndex + 1) + amount + drive.mediaSpaceUsed.description + " in all."
