// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

namespace kuv::test {

/// SQLite's way to files, in this process, for as long as the object lives: it counts the locks
/// that were refused, and fails where it is told to. Of files that are opened meanwhile, by
/// whomever.
class Watched_Files {
 public:
  Watched_Files();
  ~Watched_Files();
  Watched_Files(const Watched_Files&) = delete;
  Watched_Files& operator=(const Watched_Files&) = delete;

  /// How often a lock was asked for in vain.
  int refusals() const;

  /// Lets the next syncs fail, that many, of whatever file.
  void fail_syncs(int count);

  /// Lets every sync fail, and every cutting of a file, until heal().
  void fail_syncs();
  void heal();

  /// Files have no memory that processes share, as on some network file systems: no write-ahead
  /// log.
  void forbid_shared_memory();
};

}  // namespace kuv::test
