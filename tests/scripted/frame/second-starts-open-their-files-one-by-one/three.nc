G3
