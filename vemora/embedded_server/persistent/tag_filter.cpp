#include "vemora/platform/tags/tag_filter.h"

#include <algorithm>

namespace kuv::vemora::Tag_Filter {

bool matches_any(const std::map<std::string, Tag_Info>& tags,
                 const std::set<ODB_Utils::Tag_Search_Term>& terms) {
  const auto satisfied = [&tags](const ODB_Utils::Tag_Search_Term& term) {
    const auto tag = tags.find(term.name);
    return tag != tags.end() && (!term.value || tag->second.value == term.value);
  };
  return terms.empty() || std::any_of(terms.begin(), terms.end(), satisfied);
}

}  // namespace kuv::vemora::Tag_Filter
