Print Abs(-3), Abs(-2.5), Min(3, 2), Max(3, 2.5), Max(1, 2, 3) ' expect: 3 2.5 2 3 3
Print Round(2.5), Round(-2.5), Floor(2.7), Ceil(2.1), Floor(-2.1) ' expect: 3 -3 2 3 -3
Print Sqrt(16), Pow(2, 8), Exp(0), Log(1), Sign(-3) ' expect: 4 256 1 0 -1
Print Sin(0), Cos(0), Atn(1) * 4 > 3.14159, Format(Atan2(1, 1), "0.0000") ' expect: 0 1 True 0.7854
Dim r As Double = Rnd
Print r >= 0 And r < 1 ' expect: True
