// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>

#include "vemora/embedded_server/persistent/engine/sqlite_handle.h"

namespace kuv::vemora::embedded_server {

/// The site of a backup, read whole and looked through. What becomes of the file from then on does
/// not matter; nothing is made beside it.
class Read_Backup {
 public:
  /// Throws Database_Error, which names the file, when it is not one to be restored into the
  /// database at `database`.
  Read_Backup(const std::string& file, const std::string& database, std::uint64_t server_id);

  /// A copy of the site, of this library's version, to be written to.
  SQLite_Handle& site() { return site_; }

  /// Of the file that it was read from.
  const struct stat& status() const { return status_; }

 private:
  void read(const std::string& file, const std::string& database, std::uint64_t server_id);

  struct stat status_ {};
  SQLite_Handle site_;
};

}  // namespace kuv::vemora::embedded_server
