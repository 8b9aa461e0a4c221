// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

namespace kuv::vemora::embedded_server {
class Database;
}

namespace kuv::benchmarks {

/// A text that the database refuses as long as this lives: on SQLite one above a limit that is set
/// for it, on PostgreSQL one with a zero in it.
class Refused_Text {
 public:
  Refused_Text(vemora::embedded_server::Database& database, bool is_postgresql);
  ~Refused_Text();
  Refused_Text(const Refused_Text&) = delete;
  Refused_Text& operator=(const Refused_Text&) = delete;

  const std::string& text() const { return text_; }

 private:
  vemora::embedded_server::Database& database_;
  std::string text_;
  int limit_before_ = 0;  ///< 0: none was set
};

}  // namespace kuv::benchmarks
