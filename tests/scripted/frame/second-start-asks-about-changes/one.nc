G1
