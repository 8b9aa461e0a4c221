# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
# What other projects need: libraries, the headers that the libraries name as public, a CMake package
# and pkg-config files. All of it comes in components, each of which can be installed and found by itself.
include(CMakePackageConfigHelpers)

# Ours are called as a server's own. In a folder of their own they are found by those programs alone that want them.
set(VEMORA_PLATFORM_LIBDIR ${CMAKE_INSTALL_LIBDIR}/vemora CACHE STRING
    "Where the platform libraries of the embedded server are installed to")
GNUInstallDirs_get_absolute_install_dir(full_platform_libdir VEMORA_PLATFORM_LIBDIR LIBDIR)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vemora_trigger_manager)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# vemora_search_installed_libraries(FOLDER TARGET...): targets that are installed to the folder find our libraries,
# wherever all of them are installed to. Not for the product: what it found would take the place of the server's own.
function(vemora_search_installed_libraries folder)
  if(DEFINED CMAKE_INSTALL_RPATH)
    return()
  endif()
  set(searched)
  foreach(other IN ITEMS ${CMAKE_INSTALL_FULL_LIBDIR} ${full_platform_libdir})
    file(RELATIVE_PATH path ${folder} ${other})
    string(REGEX REPLACE "/\\.?$" "" path "$ORIGIN/${path}")
    list(APPEND searched ${path})
  endforeach()
  set_target_properties(${ARGN} PROPERTIES INSTALL_RPATH "${searched}")
endfunction()

# vemora_install_libraries(COMPONENT FOLDER TARGET...): what a program needs to run is in COMPONENT_runtime, what a
# project needs to build in COMPONENT_development.
function(vemora_install_libraries component folder)
  install(TARGETS ${ARGN} EXPORT ${component}_targets
          LIBRARY DESTINATION ${folder} COMPONENT ${component}_runtime NAMELINK_COMPONENT ${component}_development
          ARCHIVE DESTINATION ${folder} COMPONENT ${component}_development
          FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT ${component}_development
          FILE_SET generated DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT ${component}_development)
endfunction()

# vemora_install_package(COMPONENT DESCRIPTION REQUIRES CFLAGS LIBS): how a project finds it.
function(vemora_install_package component description requires cflags libs)
  install(EXPORT ${component}_targets NAMESPACE vemora:: DESTINATION ${package_dir}
          COMPONENT ${component}_development)
  file(RELATIVE_PATH prefix_from_pkgconfig "/${pkgconfig_dir}" "/")
  configure_file(cmake/component.pc.in ${PROJECT_BINARY_DIR}/vemora_${component}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/vemora_${component}.pc DESTINATION ${pkgconfig_dir}
          COMPONENT ${component}_development)
endfunction()

# The product and its contracts.
math(EXPR next_fmt "${fmt_VERSION_MAJOR} + 1")
vemora_install_libraries(trigger_manager ${CMAKE_INSTALL_LIBDIR} vemora_platform vemora_trigger_manager)
vemora_install_package(trigger_manager "${PROJECT_DESCRIPTION}"
  "jsoncpp = ${jsoncpp_VERSION}, fmt >= ${fmt_VERSION_MAJOR}, fmt < ${next_fmt}, libodb = ${ODB_VERSION}"
  "-DBOOST_LOG_DYN_LINK" "-lvemora_trigger_manager -lboost_log -lboost_thread")
configure_package_config_file(cmake/vemora_trigger_manager-config.cmake.in
  ${PROJECT_BINARY_DIR}/vemora_trigger_manager-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vemora_trigger_manager-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vemora_trigger_manager-config.cmake
              ${PROJECT_BINARY_DIR}/vemora_trigger_manager-config-version.cmake
              cmake/FindODB.cmake
        DESTINATION ${package_dir} COMPONENT trigger_manager_development)

if(VEMORA_BUILD_EMBEDDED_SERVER)
  set(platform vemora_persistent vemora_tags_json_converter kuv_logging kuv_utils)
  vemora_install_libraries(embedded_server ${VEMORA_PLATFORM_LIBDIR} ${platform})
  vemora_install_libraries(embedded_server ${CMAKE_INSTALL_LIBDIR}
                           vemora_texts vemora_embedded_platform vemora_embedded_server)
  vemora_install_libraries(operations ${CMAKE_INSTALL_LIBDIR} vemora_operations)
  vemora_search_installed_libraries(${full_platform_libdir} ${platform})
  vemora_search_installed_libraries(${CMAKE_INSTALL_FULL_LIBDIR}
                                    vemora_texts vemora_embedded_server vemora_operations)
  vemora_search_installed_libraries(${CMAKE_INSTALL_FULL_BINDIR} vemora-triggers)

  # All four, whether or not the program calls them.
  list(TRANSFORM platform PREPEND "-l" OUTPUT_VARIABLE linked)
  list(JOIN linked "," linked)
  if(VEMORA_STATIC_EMBEDDED_SERVER)
    # The product is named before the libraries whose functions it calls, since the linker takes those that it misses.
    set(linked "-Wl,-lvemora_trigger_manager,${linked} -lvemora_texts -lodb-sqlite -lsqlite3 -lodb-pgsql -lpq -lodb")
  else()
    set(linked "-lvemora_texts -Wl,--push-state,--no-as-needed,${linked},--pop-state")
    if(NOT full_platform_libdir STREQUAL CMAKE_INSTALL_FULL_LIBDIR)
      string(PREPEND linked "-Wl,-rpath,\${platformlibdir} ")
    endif()
  endif()
  vemora_install_package(embedded_server "A complete server for the trigger manager, on SQLite or PostgreSQL"
    "vemora_trigger_manager = ${PROJECT_VERSION}" "" "-L\${platformlibdir} -lvemora_embedded_server ${linked}")
  vemora_install_package(operations "What operators ask of a site of the embedded server"
    "vemora_embedded_server = ${PROJECT_VERSION}" "" "-lvemora_operations")
  install(TARGETS vemora-triggers RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
endif()

# What servers test their implementations of the contracts with.
if(TARGET vemora_testing)
  vemora_install_libraries(testing ${CMAKE_INSTALL_LIBDIR} vemora_testing)
  vemora_install_package(testing "Tests and test doubles for the contracts of the trigger manager"
    "vemora_trigger_manager = ${PROJECT_VERSION}, gmock" "" "")
endif()

install(DIRECTORY schemas examples DESTINATION ${CMAKE_INSTALL_DATADIR}/vemora COMPONENT documentation)
