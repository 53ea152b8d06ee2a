a











X99


