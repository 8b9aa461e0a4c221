// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "vemora/embedded_server/documents/json_grammar.h"

namespace kuv::vemora::tools {

/// The options of all commands.
struct Options {
  std::string database = "vemora.db";
  std::uint64_t server_id = 1;
  bool json = false;
  bool strict = false;               ///< warnings reject documents
  std::optional<std::string> note;   ///< about a pass, for the history
  bool allow_mass_deletion = false;  ///< a pass may delete most of what is stored
  std::uint64_t max_values = embedded_server::default_most_values;  ///< of a document
};

}  // namespace kuv::vemora::tools
