// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/index/id_order.h"
#include "vemora/platform/tags/tag_search_term.h"

namespace kuv::vemora::embedded_server {

/// Which items have which tag, so that a tag filter costs what it finds and not what there is.
template <class Item>
class Tag_Postings {
 public:
  void add(const std::string& name, const std::optional<std::string>& value, Item item) {
    Postings& postings = by_name_[name];
    postings.all.push_back(item);
    if (value) {
      postings.by_value[*value].push_back(item);
    }
  }

  /// The items that have a tag that satisfies at least one term, ascending, each once: those that
  /// Tag_Filter::matches_any says yes to, but for an empty filter, which finds nothing here.
  std::vector<Item> find_any(const std::set<ODB_Utils::Tag_Search_Term>& terms) const {
    std::vector<Item> found;
    for (const ODB_Utils::Tag_Search_Term& term : terms) {
      const std::vector<Item>* const items = find(term);
      if (items != nullptr) {
        found.insert(found.end(), items->begin(), items->end());
      }
    }
    sort_unique_by(found, [](const Item& item) { return item; });
    return found;
  }

 private:
  struct Postings {
    std::vector<Item> all;
    std::map<std::string, std::vector<Item>> by_value;
  };

  const std::vector<Item>* find(const ODB_Utils::Tag_Search_Term& term) const {
    const auto named = by_name_.find(term.name);
    if (named == by_name_.end()) {
      return nullptr;
    }
    if (!term.value) {
      return &named->second.all;
    }
    const auto valued = named->second.by_value.find(*term.value);
    return valued == named->second.by_value.end() ? nullptr : &valued->second;
  }

  std::map<std::string, Postings> by_name_;
};

}  // namespace kuv::vemora::embedded_server
