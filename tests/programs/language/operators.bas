Print 7 / 2, 7 \ 2, 7 Mod 3, -7 \ 2, -7 Mod 3 ' expect: 3.5 3 1 -3 -1
Print 2 ^ 10, 2 ^ -1, 2 ^ 0.5 > 1.41 ' expect: 1024 0.5 True
Print -2 ^ 2 ' expect: -4
Print 2 + 3 * 4, (2 + 3) * 4, 10 - 4 - 3 ' expect: 14 20 3
Print "a" & 1 & 2.5 & True ' expect: a12.5True
Print "a" + "b" ' expect: ab
Print 1 < 2, 2 <= 2, 3 > 4, 4 >= 4, 1 <> 1, 1 = 1 ' expect: True True False True False True
Print "abc" = "ABC", "abc" < "B", "Z" > "a" ' expect: True True True
Print Not True, Not (1 = 2) ' expect: False True
Print True And False, True Or False, True Xor True ' expect: False True False
Print 12 And 10, 12 Or 10, 12 Xor 10, Not 0 ' expect: 8 14 6 -1
Print 1 + 2 = 3 And Not 2 > 3 ' expect: True
Print 7.5 Mod 2, 5.9 \ 2 ' expect: 1.5 2
Print 1 / 0 ' expect: inf
Print 10 Mod 4 * 2 ' expect: 2
