// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <map>
#include <set>
#include <string>

#include "vemora/platform/export.h"
#include "vemora/platform/tags/tag_info.h"
#include "vemora/platform/tags/tag_search_term.h"

namespace kuv::vemora::Tag_Filter {

/// Whether a tag of the term's name satisfies it: any value does where none is asked for, otherwise
/// the same one, byte for byte.
inline bool satisfies(const Tag_Info& tag, const ODB_Utils::Tag_Search_Term& term) {
  return !term.value || tag.value == term.value;
}

/// Whether `tags` satisfy at least one of `terms`. An empty filter asks for nothing, so it refuses
/// nothing: with no terms the answer is true. Called while the documents are parsed, with the tags
/// of the server.
VEMORA_API bool matches_any(const std::map<std::string, Tag_Info>& tags,
                            const std::set<ODB_Utils::Tag_Search_Term>& terms);

}  // namespace kuv::vemora::Tag_Filter
