' Ranges, rectangles, sizes and points.
Dim rect As New NSRectQRX(1, 2.5, 30, 40)
rect.x = rect.x * 2
Print rect.x ' expect: 2
Print rect.y ' expect: 2.5
Print rect.width * rect.height ' expect: 1200

Dim range As New NSRangeQRX(3, 4)
range.length = range.length + 1
Print range.location + range.length ' expect: 8

Dim size As New NSSizeQRX(640, 480)
Print size.width / size.height ' expect match: ^1\.33
Dim point As New NSPointQRX
Print point.x = 0 And point.y = 0 ' expect: True
point.y = -1.5
Print point.y ' expect: -1.5

' Index sets, text and characters as the platform keeps them.
Dim tracks As New NSIndexSetQRX(2, 3)
Print tracks.count ' expect: 3
Print tracks.containsIndex(4) And Not tracks.containsIndex(5) ' expect: True
Dim title As New NSAttributedStringQRX("Größe")
Print title.text ' expect: Größe
Dim vowels As New NSCharacterSetQRX("aeiou")
Print vowels.containsAll("eau") ' expect: True
Print vowels.containsAll("water") ' expect: False
