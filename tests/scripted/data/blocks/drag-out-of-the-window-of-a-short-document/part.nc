N0
N1
N2
N3
