' A nil where an object is due gets one clear sentence.
Dim burn As New DRBurnQRX(Nil) ' expect error: NilObjectException: device is nil
