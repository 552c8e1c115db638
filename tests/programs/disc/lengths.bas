' Lengths on a disc are made, counted and shown.
Dim film As New DRMSFQRX(24822)
Print film.minutes ' expect: 5
Print film.seconds ' expect: 30
Print film.frames ' expect: 72
Print film.sectors ' expect: 24822
Print film.description ' expect: 05:30:72

Dim pause As DRMSFQRX = DRMSFQRX.msfWithString("00:02:00")
Print film.msfByAdding(pause).description ' expect: 05:32:72
Print film.msfBySubtracting(pause).sectors ' expect: 24672
Print film.isEqualToMSF(DRMSFQRX.msfWithFrames(24822)) ' expect: True
Print film.isEqualToMSF(Nil) ' expect: False
Print film.msfByAdding(Nil) Is Nil ' expect: True
Print film.descriptionWithFormat("%02m:%02s") ' expect: 05:31

Dim empty As New DRMSFQRX
Print empty.sectors ' expect: 0
Print empty.description = "" ' expect: True
Print DRMSFQRX.msf.sectors ' expect: 0
