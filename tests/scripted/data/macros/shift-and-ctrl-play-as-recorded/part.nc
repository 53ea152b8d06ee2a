A1
B2
C3
D4 Z
E5
F6
G7
H8 Z
I9
