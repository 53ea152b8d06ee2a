G1
G2
G3
G4
