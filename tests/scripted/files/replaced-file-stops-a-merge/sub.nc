G9
