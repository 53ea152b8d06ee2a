G0
G1
G2
G3
G4
G5
G6
