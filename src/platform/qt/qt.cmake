# What is compiled into the desktop program beside its sources: the manual, the icon and the version.
qt_add_resources(hexlane_qt manual PREFIX /hexlane/docs BASE ${PROJECT_SOURCE_DIR}/docs
                 FILES ${PROJECT_SOURCE_DIR}/docs/manual.md)

set(icons)
foreach(size 16 24 32 48 64 128 256)
  list(APPEND icons ${PROJECT_SOURCE_DIR}/packaging/icons/hexlane-${size}.png)
endforeach()
qt_add_resources(hexlane_qt icons PREFIX /hexlane/icon BASE ${PROJECT_SOURCE_DIR}/packaging/icons FILES ${icons})

target_compile_definitions(hexlane_qt PUBLIC HEXLANE_VERSION="${PROJECT_VERSION}")
