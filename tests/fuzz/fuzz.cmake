# Fuzzers, included by tests/CMakeLists.txt in the preset `fuzz`.
if(HEXLANE_FUZZ)
  add_subdirectory(fuzz)
endif()
