G2 (near)
