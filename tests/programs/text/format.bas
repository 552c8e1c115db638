Print Format(1234567.891, "#,##0.00") ' expect: 1,234,567.89
Print Format(0.256, "0.0%"), Format(0.5, "0%") ' expect: 25.6% 50%
Print Format(5, "000"), Format(5, "#"), Format(0, "#") + "|", Format(0, "0") ' expect: 005 5 | 0
Print Format(-1.5, "0.0"), Format(-0.001, "0.0"), Format(1.5, "+0.0") ' expect: -1.5 0.0 +1.5
Print Format(1.005, "0.00"), Format(2.675, "0.00"), Format(0.5, "0") ' expect: 1.01 2.68 1
Print Format(12.5, "0.##"), Format(12, "0.##") ' expect: 12.5 12
Print Format(3, "0 \M\B"), Format(3, "0 MB") ' expect: 3 MB 3 MB
Print Format(-3, "0;(0)"), Format(0, "0;-0;none") ' expect: (3) none
Print Format(12345.678, "0.00E+00") ' expect: 1.23E+04
Print Format(999.999, "#,##0.00") ' expect: 1,000.00
