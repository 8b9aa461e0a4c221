// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <string>

namespace kuv::vemora::embedded_server {

/// A line and a column of a text, both counted from 1, columns in characters; 0 if not known.
struct Location {
  std::size_t line = 0;
  std::size_t column = 0;
};

/// What is wrong with a document, and where.
struct Document_Fault {
  std::string message;
  Location location;
};

}  // namespace kuv::vemora::embedded_server
