# SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
# SPDX-License-Identifier: GPL-2.0-only
# Writes the numbered schema steps of an engine into a header: cmake -DSTEPS=... -DNAME=... -DOUTPUT=...
string(REPLACE "," ";" STEPS "${STEPS}")
list(LENGTH STEPS count)
set(text "#pragma once\n\n#include <array>\n\n")
string(APPEND text "inline constexpr std::array<const char*, ${count}> ${NAME}{\n")
foreach(step IN LISTS STEPS)
  file(READ "${step}" sql)
  string(APPEND text "R\"__sql__(${sql})__sql__\",\n")
endforeach()
string(APPEND text "};\n")
file(WRITE "${OUTPUT}" "${text}")
