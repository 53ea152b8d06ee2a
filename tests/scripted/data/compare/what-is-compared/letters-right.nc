P
Q
R
D
E
F
G
