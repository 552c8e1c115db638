' Adds a copy of a folder to a disc that stays open for more: each day's copy stands beside those of the days before.
'
'   disc-basic backup.bas [--drive=NAME] [--exclude=PATTERN]... FOLDER
'
'   --drive=NAME        the drive, by its folder's name or the one it shows (default: the first one)
'   --exclude=PATTERN   leaves out what has such a name, with all that is in it; * stands for any text: --exclude=*.o
'                       (letters count as they are: *.o is not *.O)
'
' The copy is a folder that is named after the time, with a listing of its files beside it.

Const Usage = "Usage: backup.bas [--drive=NAME] [--exclude=PATTERN]... FOLDER"

Sub Fail(message As String)
    StdErr.WriteLine("backup: " + message)
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

' Whether a name is what a pattern says: the parts between its stars, in their order.
Function Matches(name As String, pattern As String) As Boolean
    Dim parts() As String = Split(pattern, "*")
    If parts.LastIndex = 0 Then Return StrComp(name, pattern, 0) = 0
    Dim first As String = parts(0)
    Dim last As String = parts(parts.LastIndex)
    If LenB(name) < LenB(first) + LenB(last) Then Return False
    If StrComp(LeftB(name, LenB(first)), first, 0) <> 0 Or StrComp(RightB(name, LenB(last)), last, 0) <> 0 Then Return False
    Dim rest As String = MidB(name, LenB(first) + 1, LenB(name) - LenB(first) - LenB(last))
    For i As Integer = 1 To parts.LastIndex - 1
        If parts(i) <> "" Then
            Dim place As Integer = InStrB(rest, parts(i))
            If place = 0 Then Return False
            rest = MidB(rest, place + LenB(parts(i)))
        End If
    Next
    Return True
End Function

' Takes what is excluded out of a folder on disk, and tells what stays in it.
Class Selection
    Dim patterns() As String
    Dim listing As String
    Dim fileCount As Integer
    Dim excludedCount As Integer
    Dim totalBytes As Double

    Function IsExcluded(name As String) As Boolean
        For Each pattern As String In patterns
            If Matches(name, pattern) Then Return True
        Next
        Return False
    End Function

    Sub Take(folder As DRFolderQRX, path As String)
        folder.makeVirtual
        For Each child As DRFSObjectQRX In folder.children
            Dim name As String = child.baseName
            If IsExcluded(name) Then
                folder.removeChild(child)
                excludedCount = excludedCount + 1
            ElseIf child IsA DRFolderQRX Then
                Take(DRFolderQRX(child), path + name + "/")
            Else
                List(GetFolderItem(child.sourcePath), path + name)
            End If
        Next
    End Sub

    Private Sub List(file As FolderItem, path As String)
        Dim size As Double
        Dim day As String = "          "
        If file <> Nil And file.Exists Then
            size = file.Length
            day = file.ModificationDate.SQLDate
        End If
        listing = listing + day + "  " + Right("               " + Format(size, "#,##0"), 15) + "  " + path + EndOfLine
        fileCount = fileCount + 1
        totalBytes = totalBytes + size
    End Sub
End Class

' ---- what to back up --------------------------------------------------------------------------------------

Dim selection As New Selection
Dim path As String
Dim driveName As String
For Each argument As String In App.Arguments
    If argument.BeginsWith("--exclude=") And Len(argument) > 10 Then
        selection.patterns.Append(Mid(argument, 11))
    ElseIf argument.BeginsWith("--drive=") And Len(argument) > 8 Then
        driveName = Mid(argument, 9)
    ElseIf path = "" And Not argument.BeginsWith("--") Then
        path = argument
    Else
        path = ""
        Exit
    End If
Next
If path = "" Then
    StdErr.WriteLine(Usage)
    Quit(2)
End If
Dim source As FolderItem = GetFolderItem(path)
If source Is Nil Or Not source.Exists Then Fail("there is no folder " + path)
If Not source.Directory Then Fail(path + " is not a folder; give the folder that it is in")

' ---- where to ---------------------------------------------------------------------------------------------

Dim drive As DRDeviceQRX = DriveNamed(driveName)
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then
    Fail("there is no disc in " + drive.displayName + "; insert one" + HowToInsert(drive, "DVD+R"))
End If
If Not drive.mediaIsAppendable Then
    Dim advice As String = "insert a blank one" + HowToInsert(drive, "DVD+R")
    If drive.mediaIsErasable Then advice = "erase.bas makes it blank, or " + advice
    Fail("nothing can be added to the disc in " + drive.displayName + "; " + advice)
End If

' ---- the tree: on the disc, a session shows what the earlier ones hold, too ---------------------------------

Dim now As New Date
Dim name As String = ReplaceAll(now.SQLDateTime, ":", ".")
Dim copy As DRFolderQRX = DRFolderQRX.folderWithPath(source)
Try
    selection.Take(copy, source.Name + "/")
Catch problem As RuntimeException
    Fail(problem.Message) ' a folder in it that can't be read
End Try

Dim text As String = "Backup of " + source.NativePath + ", " + now.SQLDateTime + EndOfLine + _
    Str(selection.fileCount) + " files, " + Format(selection.totalBytes, "#,##0") + " bytes" + EndOfLine + EndOfLine + selection.listing
Dim bytes As New MemoryBlock(LenB(text))
bytes.StringValue(0, LenB(text)) = text

Dim today As DRFolderQRX = DRFolderQRX.virtualFolderWithName(name)
today.addChild(copy)
today.addChild(DRFileQRX.virtualFileWithName("listing.txt", bytes))
Dim root As DRFolderQRX = DRFolderQRX.virtualFolderWithName("Backups")
root.addChild(today)

' ---- burn -------------------------------------------------------------------------------------------------

Dim burn As New DRBurnQRX(drive)
burn.appendable = True
burn.verifyDisc = True
burn.completionAction = DRBurnQRX.DRBurnCompletionActionMount
burn.BurnFailureAction = DRBurnQRX.DRBurnFailureActionNone
Dim track As DRTrackQRX = DRTrackQRX.trackForRootFolder(root)
track.VerificationType = DRTrackQRX.DRVerificationTypeChecksum
burn.writeLayout(track)
Dim status As Dictionary
Dim state As String
Do
    App.DoEvents(50)
    status = burn.status
    state = status.Value(DRBurnQRX.DRStatusStateKey)
Loop Until state = DRBurnQRX.DRStatusStateDone Or state = DRBurnQRX.DRStatusStateFailed
If state = DRBurnQRX.DRStatusStateFailed Then
    Dim problem As Dictionary = status.Value(DRBurnQRX.DRErrorStatusKey)
    Fail(problem.Value(DRBurnQRX.DRErrorStatusErrorStringKey))
End If

Print "Backed up " + Str(selection.fileCount) + " files, " + Format(selection.totalBytes, "#,##0") + " bytes, as """ + name + """."
If selection.excludedCount > 0 Then Print "Left out: " + Str(selection.excludedCount)
Print Format(drive.mediaSpaceFree.sectors * 2048 / 1000000, "#,##0.0") + " MB are left on the disc in " + drive.displayName + "."
