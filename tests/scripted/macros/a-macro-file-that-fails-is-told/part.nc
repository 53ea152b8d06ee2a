A
