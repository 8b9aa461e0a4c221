// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_parser/counted_formatting.h"

#include <fmt/format.h>

#include <string>

namespace {

int count = 0;

}  // namespace

/// The formatting library's own, counted. A program's functions come before those of its libraries,
/// so that every library of this process calls this one.
std::string fmt::vformat(fmt::string_view pattern, fmt::format_args arguments) {
  ++count;
  fmt::memory_buffer text;
  fmt::vformat_to(fmt::appender(text), pattern, arguments);
  return fmt::to_string(text);
}

namespace kuv::test {

int texts_formatted() {
  return count;
}

}  // namespace kuv::test
