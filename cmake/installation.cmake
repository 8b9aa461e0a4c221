# What other projects need: libraries, headers under vemora/, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

set(vemora_libraries vemora_platform vemora_texts kuv_utils kuv_logging vemora_tags_json_converter
                     vemora_persistent vemora_embedded_server vemora_trigger_manager)
install(TARGETS ${vemora_libraries}
        EXPORT vemora_trigger_manager_targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS vemora-triggers RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

set(headers ${CMAKE_INSTALL_INCLUDEDIR}/vemora)
install(DIRECTORY platform DESTINATION ${headers} FILES_MATCHING PATTERN "*.h")
install(FILES trigger_manager/trigger_manager.h trigger_manager/vemora_trigger_manager.h
        DESTINATION ${headers}/trigger_manager)
install(FILES trigger_parser/notification_properties.h trigger_parser/parser_fault.h
              trigger_parser/trigger_config.h
              trigger_parser/trigger_config_state.h trigger_parser/trigger_mapping.h
              trigger_parser/trigger_parser.h trigger_parser/vemora_trigger_parser.h
        DESTINATION ${headers}/trigger_parser)
install(FILES embedded_server/persistent/backup.h embedded_server/persistent/changes.h embedded_server/persistent/database.h
              embedded_server/persistent/database_error.h embedded_server/persistent/inventory.h
              embedded_server/persistent/pass_scope.h embedded_server/persistent/site_reader.h
              embedded_server/persistent/source_type_names.h
        DESTINATION ${headers}/embedded_server/persistent)
install(FILES embedded_server/texts/json_nesting.h embedded_server/texts/letters.h
              embedded_server/texts/printable.h
        DESTINATION ${headers}/embedded_server/texts)
install(FILES embedded_server/logging/console.h DESTINATION ${headers}/embedded_server/logging)
install(DIRECTORY embedded_server/host DESTINATION ${headers}/embedded_server
        FILES_MATCHING PATTERN "*.h")

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vemora_trigger_manager)
install(EXPORT vemora_trigger_manager_targets NAMESPACE vemora:: DESTINATION ${package_dir})
configure_package_config_file(
  cmake/vemora_trigger_manager-config.cmake.in
  ${PROJECT_BINARY_DIR}/vemora_trigger_manager-config.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/vemora_trigger_manager-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vemora_trigger_manager-config.cmake
              ${PROJECT_BINARY_DIR}/vemora_trigger_manager-config-version.cmake
        DESTINATION ${package_dir})

# Wherever it is installed to, it says so.
file(RELATIVE_PATH PREFIX_FROM_PKGCONFIG "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/vemora_trigger_manager.pc.in ${PROJECT_BINARY_DIR}/vemora_trigger_manager.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vemora_trigger_manager.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(DIRECTORY schemas examples DESTINATION ${CMAKE_INSTALL_DATADIR}/vemora)
