// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "vemora/platform/tags/tag_entry.h"
#include "vemora/platform/tags/tag_info.h"
#include "vemora/platform/tags/tag_search_term.h"

namespace kuv::vemora::operations {

/// The tags of a record: "area=yard, outdoor"; "no tags" where it has none.
std::string described(const Tag_Map& tags);
std::string described(const std::set<Tag_Entry>& tags);

/// A filter: "area=yard or outdoor".
std::string described(const std::set<ODB_Utils::Tag_Search_Term>& terms);

/// "car, truck and 3 more".
std::string described(const std::vector<std::string>& words);

}  // namespace kuv::vemora::operations
