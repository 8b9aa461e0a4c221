// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/changes.h"

namespace kuv::vemora::embedded_server {

// The history of a site: an entry for each pass that changed something, or ended with other errors
// than the one before.

/// Who runs a pass, and why.
struct Pass_Origin {
  std::string command;              ///< empty: what is known without it
  std::string by;                   ///< empty: the user and the host of this process
  std::optional<std::string> note;  ///< UTF-8
};

/// How a pass ended.
struct Pass_Ending {
  bool success = true;
  std::vector<std::string> errors;
};

/// A pass as the history has it.
struct History_Entry {
  /// How the pass ended.
  enum class Status : std::int32_t {
    cut_short = 0,  ///< its records are stored; how it ended, and its documents, were not
    done = 1,       ///< single triggers may have errors
    failed = 2,
  };

  std::uint64_t pass = 0;         ///< its number, from 1
  std::int64_t at = 0;            ///< when it began: seconds since 1970, UTC
  std::optional<std::string> by;  ///< nothing where nobody knows
  std::string command;
  std::optional<std::string> note;
  Status status = Status::done;
  std::uint64_t errors = 0;
  Change_Counts changes;
  std::set<std::uint64_t> triggers_created;
  std::set<std::uint64_t> triggers_changed;
  std::set<std::uint64_t> triggers_deleted;
  std::set<std::uint64_t> reconciled;  ///< cameras
};

}  // namespace kuv::vemora::embedded_server
