# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
# What every target of ours is built with.
add_library(vemora_build_options INTERFACE)
target_compile_features(vemora_build_options INTERFACE cxx_std_17)
target_compile_options(vemora_build_options INTERFACE -Wall -Wextra -Wpedantic
                       $<$<BOOL:${VEMORA_WERROR}>:-Werror>)
if(VEMORA_SANITIZE)
  # GCC takes what the sanitizers add for values that nobody set.
  add_compile_options(-fsanitize=${VEMORA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all
                      $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
                      $<$<CXX_COMPILER_ID:Clang>:-fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/unsanitized.txt>)
  add_link_options(-fsanitize=${VEMORA_SANITIZE})
endif()

# Programs of position-independent code are asked for, and not left to the compiler.
if(CMAKE_POSITION_INDEPENDENT_CODE)
  include(CheckPIESupported)
  check_pie_supported(LANGUAGES CXX)
endif()

# A shared library that shows only what is marked for it and knows all it needs. Of a static embedded server, the
# product alone is one: it is what servers load.
function(vemora_add_library name)
  if(VEMORA_STATIC_EMBEDDED_SERVER AND NOT name STREQUAL "vemora_trigger_manager")
    add_library(${name} STATIC ${ARGN})
  else()
    add_library(${name} SHARED ${ARGN})
  endif()
  add_library(vemora::${name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:vemora_build_options>)
  if(NOT VEMORA_SANITIZE)
    target_link_options(${name} PRIVATE -Wl,--no-undefined)
  endif()
endfunction()

# What the library shows is named in exports.map beside it, which scripts/write-exports keeps: what its public headers
# declare, and nothing else. A VERSIONED library has the project's version in its file's name and in its symbols; one
# without can be replaced by a server's own of the same name (docs/abi.md).
function(vemora_export name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "VERSIONED" "" "")
  set(exports "${CMAKE_CURRENT_SOURCE_DIR}/exports.map")
  target_link_options(${name} PRIVATE "LINKER:--version-script=${exports}")
  set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS "${exports}")
  if(arg_VERSIONED)
    set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  endif()
endfunction()

# What such a library is made of.
function(vemora_add_objects name)
  add_library(${name} OBJECT ${ARGN})
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_link_libraries(${name} PRIVATE vemora_build_options)
endfunction()

# The headers of a library that others may include: these are installed, and each is verified to
# compile alone. All others are private to their folder.
function(vemora_public_headers name scope)
  target_sources(${name} ${scope} FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${ARGN})
  set_target_properties(${name} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()

function(vemora_add_executable name)
  add_executable(${name} ${ARGN})
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  target_link_libraries(${name} PRIVATE vemora_build_options)
endfunction()
