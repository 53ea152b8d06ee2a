# What is compiled into the desktop program beside its sources: the manual, its pictures, the icon and the version.
file(GLOB manual_pictures CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/pictures/*.png)
qt_add_resources(hexlane_qt manual PREFIX /hexlane/docs BASE ${PROJECT_SOURCE_DIR}/docs
                 FILES ${PROJECT_SOURCE_DIR}/docs/manual.md ${manual_pictures})

set(icons)
foreach(size 16 24 32 48 64 128 256)
  list(APPEND icons ${PROJECT_SOURCE_DIR}/packaging/icons/hexlane-${size}.png)
endforeach()
qt_add_resources(hexlane_qt icons PREFIX /hexlane/icon BASE ${PROJECT_SOURCE_DIR}/packaging/icons FILES ${icons})

target_compile_definitions(hexlane_qt PUBLIC HEXLANE_VERSION="${PROJECT_VERSION}")
