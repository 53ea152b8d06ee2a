A
B
C
D
E
F
G
