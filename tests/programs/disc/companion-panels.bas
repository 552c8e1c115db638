' Where there is no display panels are empty: every member answers so, and nothing begins.
' environment: DISPLAY=
' environment: DISC_DRIVES=drives
Dim device As DRDeviceQRX = DRDeviceQRX.device(0)
Dim burn As New DRBurnQRX(device)
Dim track As New DRTrackQRX
Dim tracks() As DRTrackQRX
tracks.Append track

Dim setup As New DRBurnSetupPanelQRX
setup.setDefaultButtonTitle("Go")
setup.setCanSelectTestBurn(True)
setup.setCanSelectAppendableMedia(False)
setup.expand
setup.burnSpeed
setup.appendable
setup.completionAction
setup.testBurn
setup.verifyBurn
setup.ok
setup.cancel
Print setup.runSetupPanel = DRSetupPanelQRX.NSCancelButton ' expect: True
Print DRSetupPanelQRX.NSOKButton ' expect: 1
Print setup.burnObject Is Nil ' expect: True
setup.Constructor ' as often as one likes
Print setup.burnObject Is Nil ' expect: True

Dim eraser As New DREraseSetupPanelQRX
Print eraser.runSetupPanel ' expect: 0
Print eraser.eraseObject Is Nil ' expect: True

Dim progress As New DRBurnProgressPanelQRX
progress.Constructor ' there is no panel yet, so this is no second call
progress.Description = "Photos"
progress.VerboseProgressStatus = True
Print progress.Description = "" ' expect: True
Print progress.VerboseProgressStatus ' expect: False
progress.beginProgressPanelForBurn(burn, track)
progress.beginProgressPanelForBurn(burn, tracks)
progress.beginProgressSheetForBurn(burn, track, Nil)
progress.beginProgressSheetForBurn(burn, tracks, Nil)
Dim missing As New FolderItem("/no/such/image.iso")
Print progress.beginProgressPanelForImageFile(burn, missing) ' expect: False
Print progress.beginProgressSheetForImageFile(burn, missing, Nil) ' expect: False
progress.stopBurn
Print burn.status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateNone ' expect: True

Dim erasing As New DREraseProgressPanelQRX
erasing.Description = "Photos"
Print erasing.Description = "" ' expect: True
Dim disc As New DREraseQRX(device)
erasing.beginProgressPanelForErase(disc)
erasing.beginProgressSheetForErase(disc, Nil)
erasing.beginProgressPanelForErase(Nil)
Print disc.status.Value(DRBurnQRX.DRStatusStateKey) = DRBurnQRX.DRStatusStateNone ' expect: True
