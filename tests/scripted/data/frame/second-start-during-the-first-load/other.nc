G5
