// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <sys/stat.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "vemora/embedded_server/persistent/engine/file_lock.h"
#include "vemora/embedded_server/persistent/engine/sqlite_files.h"
#include "vemora/embedded_server/persistent/engine/sqlite_handle.h"

namespace kuv::vemora::embedded_server {

/// The site in a file that another one takes the place of. To be used in the order of the
/// operations; all of them throw SQLite_Fault and other Database_Errors.
class Replaced_Site {
 public:
  /// A file like the model is made where there is none.
  Replaced_Site(const std::string& path, const struct stat& model,
                std::chrono::milliseconds lock_wait);

  /// Refuses what is not to be replaced. To be asked again behind lock().
  void examine(std::uint64_t server_id);

  /// Keeps passes out from then on.
  void lock() { lock_.emplace(files_.lock_file(), path_, lock_wait_); }

  /// Notes in the site that comes which of its cameras have other subscriptions from now on.
  void note_pending_cameras(SQLite_Handle& coming);

  /// What is written is all there after the commit, and none of it before.
  void replace_by(SQLite_Handle& coming);

 private:
  bool note_different(SQLite_Handle& coming);
  void replace_what_is_damaged(SQLite_Handle& coming);
  void copy_and_know(SQLite_Handle& coming);
  int copy_from(SQLite_Handle& coming);
  void require_in_place_still() const;

  std::string path_;
  std::chrono::milliseconds lock_wait_;
  SQLite_Files files_;
  std::optional<File_Lock> lock_;
  std::optional<SQLite_Handle> file_;
  bool is_site_ = false;
  bool is_damaged_ = false;
};

}  // namespace kuv::vemora::embedded_server
