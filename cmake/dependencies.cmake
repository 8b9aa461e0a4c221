# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
find_package(jsoncpp REQUIRED)
find_package(fmt 9 REQUIRED)
find_package(Boost 1.74 REQUIRED COMPONENTS thread log date_time)
find_package(Threads REQUIRED)
find_package(ODB 2.4 REQUIRED)

if(VEMORA_BUILD_EMBEDDED_SERVER)
  find_package(SQLite3 REQUIRED)
  find_package(PostgreSQL REQUIRED)
  find_package(RapidJSON 1.1 REQUIRED)
  find_package(CLI11 REQUIRED)
  if(VEMORA_MIMALLOC)
    find_package(mimalloc 2.0 REQUIRED)
  endif()
  find_program(ODB_COMPILER odb REQUIRED)
  find_library(ODB_SQLITE_LIBRARY odb-sqlite REQUIRED)
  find_library(ODB_PGSQL_LIBRARY odb-pgsql REQUIRED)
endif()

# What tests of servers are made of has headers of GoogleTest in its own.
find_package(GTest QUIET)
set(offer_testing OFF)
if(PROJECT_IS_TOP_LEVEL AND GTest_FOUND)
  set(offer_testing ON)
endif()
option(VEMORA_BUILD_TESTING_SUPPORT
       "Offer the contract suite, the mocks and the in-memory repository (they need GoogleTest)" ${offer_testing})
if(VEMORA_BUILD_TESTING_SUPPORT)
  find_package(GTest REQUIRED)
endif()
