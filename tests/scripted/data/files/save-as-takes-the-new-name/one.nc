G1
G2
