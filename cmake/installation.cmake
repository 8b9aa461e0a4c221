# What other projects need: libraries, the headers that the libraries name as public, a CMake package
# and a pkg-config file.
include(CMakePackageConfigHelpers)

set(vemora_libraries vemora_platform vemora_trigger_manager)
if(VEMORA_BUILD_EMBEDDED_SERVER)
  list(APPEND vemora_libraries
       vemora_texts kuv_utils kuv_logging vemora_tags_json_converter vemora_persistent
       vemora_embedded_server vemora_operations)
  install(TARGETS vemora-triggers RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
install(TARGETS ${vemora_libraries}
        EXPORT vemora_trigger_manager_targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vemora_trigger_manager)
install(EXPORT vemora_trigger_manager_targets NAMESPACE vemora:: DESTINATION ${package_dir})
math(EXPR next_fmt "${fmt_VERSION_MAJOR} + 1")
configure_package_config_file(
  cmake/vemora_trigger_manager-config.cmake.in
  ${PROJECT_BINARY_DIR}/vemora_trigger_manager-config.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/vemora_trigger_manager-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vemora_trigger_manager-config.cmake
              ${PROJECT_BINARY_DIR}/vemora_trigger_manager-config-version.cmake
              cmake/FindODB.cmake
        DESTINATION ${package_dir})

# Wherever it is installed to, it says so.
set(platform_flags)
if(VEMORA_BUILD_EMBEDDED_SERVER)
  set(platform_flags " -lvemora_persistent -lvemora_tags_json_converter -lkuv_logging -lkuv_utils")
endif()
file(RELATIVE_PATH PREFIX_FROM_PKGCONFIG "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/vemora_trigger_manager.pc.in ${PROJECT_BINARY_DIR}/vemora_trigger_manager.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vemora_trigger_manager.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(DIRECTORY schemas examples DESTINATION ${CMAKE_INSTALL_DATADIR}/vemora)
