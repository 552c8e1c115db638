' Adds a copy of a folder to a disc that stays open for more: each day's copy stands beside those of the days before.
'
'   disc-basic backup.bas [--drive=NAME] [--exclude=PATTERN]... FOLDER
'
'   --drive=NAME        the drive, by the name it shows (default: the first one)
'   --exclude=PATTERN   leaves out what has such a name, with all that is in it; * stands for any text: --exclude=*.o
'
' The copy is a folder that is named after the time, with a listing of its files beside it.

Const Usage = "Usage: backup.bas [--drive=NAME] [--exclude=PATTERN]... FOLDER"

Sub Fail(message As String)
    StdErr.WriteLine("backup: " + message)
    Quit(1)
End Sub

' Whether a name is what a pattern says: the parts between its stars, in their order.
Function Matches(name As String, pattern As String) As Boolean
    Dim parts() As String = Split(pattern, "*")
    If parts.LastIndex = 0 Then Return name = pattern
    Dim first As String = parts(0)
    Dim last As String = parts(parts.LastIndex)
    If Len(name) < Len(first) + Len(last) Then Return False
    If Left(name, Len(first)) <> first Or Right(name, Len(last)) <> last Then Return False
    Dim rest As String = Mid(name, Len(first) + 1, Len(name) - Len(first) - Len(last))
    For i As Integer = 1 To parts.LastIndex - 1
        If parts(i) <> "" Then
            Dim place As Integer = InStr(rest, parts(i))
            If place = 0 Then Return False
            rest = Mid(rest, place + Len(parts(i)))
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
    ElseIf argument.BeginsWith("--drive=") Then
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

If DRDeviceQRX.deviceCount = 0 Then Fail("there is no drive that can write discs; disc-drives list names those in use")
Dim drive As DRDeviceQRX = DRDeviceQRX.device(0)
If driveName <> "" Then
    drive = Nil
    For Each candidate As DRDeviceQRX In DRDeviceQRX.devices
        If drive Is Nil And candidate.displayName = driveName Then drive = candidate
    Next
    If drive Is Nil Then Fail("there is no drive " + driveName + "; list-drives.bas shows which there are")
End If
If drive.trayIsOpen Then Call drive.closeTray
If Not drive.mediaIsPresent Then Fail("there is no disc in " + drive.displayName + "; insert one and try again")
If Not drive.mediaIsAppendable Then Fail("nothing can be added to the disc in " + drive.displayName + "; insert another one")

' ---- the tree: on the disc, a session shows what the earlier ones hold, too ---------------------------------

Dim now As New Date
Dim name As String = ReplaceAll(now.SQLDateTime, ":", ".")
Dim copy As DRFolderQRX = DRFolderQRX.folderWithPath(source)
selection.Take(copy, source.Name + "/")

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
