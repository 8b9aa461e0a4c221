# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
# odb_generate(TARGET HEADER...): has the ODB compiler write the database code for mapping headers
# and builds it into the target. Generated code is included as "NAME-odb.h".
function(odb_generate target)
  set(output "${CMAKE_CURRENT_BINARY_DIR}/odb")
  file(MAKE_DIRECTORY "${output}")
  set(generated)
  foreach(header IN LISTS ARGN)
    get_filename_component(name "${header}" NAME_WE)
    get_filename_component(path "${header}" ABSOLUTE)
    set(sources "${output}/${name}-odb.cpp")
    set(byproducts "${output}/${name}-odb.h" "${output}/${name}-odb.ixx")
    foreach(engine IN LISTS VEMORA_DATABASES)
      list(APPEND sources "${output}/${name}-odb-${engine}.cpp")
      list(APPEND byproducts "${output}/${name}-odb-${engine}.h" "${output}/${name}-odb-${engine}.ixx")
    endforeach()
    set(engines ${VEMORA_DATABASES})
    list(TRANSFORM engines PREPEND "--database;")
    add_custom_command(
      OUTPUT ${sources} ${byproducts}
      COMMAND ${ODB_COMPILER} --multi-database dynamic --database common ${engines}
              --std c++11 -x -std=gnu++17 --generate-query
              --hxx-suffix .h --cxx-suffix .cpp --output-dir "${output}"
              -I "${PROJECT_SOURCE_DIR}" "${path}"
      # What a mapping header includes decides what is generated, so any of our headers may.
      DEPENDS "${path}" ${ODB_MAPPED_HEADERS}
      COMMENT "ODB ${name}"
      VERBATIM COMMAND_EXPAND_LISTS)
    list(APPEND generated ${sources})
  endforeach()
  # Written by a tool, to its own taste.
  set_source_files_properties(${generated} PROPERTIES COMPILE_OPTIONS "-w" SKIP_LINTING ON)
  target_sources(${target} PRIVATE ${generated})
  target_include_directories(${target} SYSTEM PRIVATE "${output}")
  target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/mapping")
endfunction()
