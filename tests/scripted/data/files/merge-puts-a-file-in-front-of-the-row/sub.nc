(SUB)
G9
