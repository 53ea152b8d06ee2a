G2
