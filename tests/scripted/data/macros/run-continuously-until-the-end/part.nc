A1
B2
C3
