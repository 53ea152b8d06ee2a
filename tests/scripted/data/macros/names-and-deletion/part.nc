A1
