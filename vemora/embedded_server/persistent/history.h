// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/history_entry.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

// What is kept of the passes of a site: the last entries, and the texts that they name as long as
// all of them together are not too large; those of the oldest are given up first. Each call joins
// the pass that is open on its thread, or reads one consistent state of its own, and throws
// Database_Error. The tables of an older version have no history: it is empty.

constexpr std::uint64_t most_history_entries = 1000;
constexpr std::size_t most_bytes_of_history_texts = std::size_t{256} << 20;

/// A text of a past pass.
struct Past_Text {
  bool was_there = false;           ///< false: there was none
  std::optional<std::string> text;  ///< nothing if it was given up since
};

/// An entry of the history, with the texts that it names.
struct Past_Pass {
  History_Entry entry;
  std::optional<std::vector<std::string>> errors;  ///< nothing if they were given up since
  // The documents that were stored when the pass was over: those of a pass that failed, or was cut
  // short, are the ones from before it.
  Past_Text config;
  Past_Text mapping;
};

/// The number of the last pass in the history; 0 if it is empty.
VEMORA_API std::uint64_t last_pass_in_history(const std::shared_ptr<Database>& database);

/// The newest entry first.
VEMORA_API std::vector<History_Entry> read_history(const std::shared_ptr<Database>& database);

/// Nothing if the history has no such entry.
VEMORA_API std::optional<Past_Pass> read_past_pass(const std::shared_ptr<Database>& database,
                                                   std::uint64_t pass);

}  // namespace kuv::vemora::embedded_server
