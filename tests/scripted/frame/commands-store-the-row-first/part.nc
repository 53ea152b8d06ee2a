G0
