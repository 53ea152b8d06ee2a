A1 X1
(C)
