// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kuv::fuzz {

/// What a server hands over, and whether its database knows the server.
struct Documents {
  std::string configuration;
  std::string mapping;
  bool server_is_known = true;
};

/// The configuration, and behind a line "---" the mapping; an empty mapping where there is none.
Documents split_documents(std::string_view text);

/// Who rejected a document.
enum class Judge {
  nobody,         ///< it was accepted
  json_library,   ///< it is no JSON, or has no keys to look up
  parser,         ///< with a registered message
  tag_converter,  ///< a tag filter in it cannot be read
  unknown,        ///< nobody who may
};

struct Verdict {
  Judge judge = Judge::nobody;
  std::string text;  ///< of the rejection
  /// What is wrong with the result of an accepted document, which must be nothing.
  std::vector<std::string> broken_promises;
};

/// Reads both documents and parses them in the order of a pass.
Verdict parse_documents(const Documents& documents);

}  // namespace kuv::fuzz
