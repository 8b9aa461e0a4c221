# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
# The same sources give the same bytes in every folder; scripts/check-reproducible builds in two. Builds for debugging
# keep the paths: debuggers find the sources by them. Included behind the build options.

# The last one that fits counts: the build may lie within the sources.
foreach(mapped "${PROJECT_SOURCE_DIR}=." "${PROJECT_BINARY_DIR}=build")
  target_compile_options(vemora_build_options INTERFACE $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${mapped}>)
endforeach()
