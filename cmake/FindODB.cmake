# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
# The runtime of ODB: ODB::odb, of the one version whose headers `vemora/platform/odb_runtime.h` knows. Installed
# beside our package file, since our headers include it.
include(FindPackageHandleStandardArgs)

find_path(ODB_INCLUDE_DIR odb/lazy-ptr.hxx)
find_library(ODB_LIBRARY odb)
mark_as_advanced(ODB_INCLUDE_DIR ODB_LIBRARY)

if(ODB_INCLUDE_DIR)
  file(STRINGS "${ODB_INCLUDE_DIR}/odb/version.hxx" ODB_VERSION REGEX "define LIBODB_VERSION_STR")
  string(REGEX REPLACE ".*\"(.*)\".*" "\\1" ODB_VERSION "${ODB_VERSION}")
endif()

find_package_handle_standard_args(ODB REQUIRED_VARS ODB_LIBRARY ODB_INCLUDE_DIR VERSION_VAR ODB_VERSION)

if(ODB_FOUND AND NOT TARGET ODB::odb)
  add_library(ODB::odb UNKNOWN IMPORTED)
  set_target_properties(ODB::odb PROPERTIES
    IMPORTED_LOCATION "${ODB_LIBRARY}"
    INTERFACE_INCLUDE_DIRECTORIES "${ODB_INCLUDE_DIR}")
endif()
