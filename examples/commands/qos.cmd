qos = 10 08 20 30 40 48 red 05
qos wan = mode2
qos wan 0 = 10 20 2 4 8
qos wan 3 = 20 40 4 8 20
rc 0 = 10 20 enable
