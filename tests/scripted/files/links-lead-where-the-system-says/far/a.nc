G1 (far)
