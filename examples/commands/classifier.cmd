clsfr 0 = 1 0 eth 0806 cpu
clsfr 1 = 2 1 dip 192.168.2.80 20 dp 50 10 pro 6 class 2
clsfr 2 = ff 2 pro 11 class 3
clsfr h = 0
clsfr f enable
