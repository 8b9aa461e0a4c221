// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/tags/tag_filter.h"

#include <algorithm>

namespace kuv::vemora::Tag_Filter {

bool matches_any(const std::map<std::string, Tag_Info>& tags,
                 const std::set<ODB_Utils::Tag_Search_Term>& terms) {
  const auto is_satisfied = [&tags](const ODB_Utils::Tag_Search_Term& term) {
    const auto tag = tags.find(term.name);
    return tag != tags.end() && satisfies(tag->second, term);
  };
  return terms.empty() || std::any_of(terms.begin(), terms.end(), is_satisfied);
}

}  // namespace kuv::vemora::Tag_Filter
