// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/tags/tags_json_converter.h"

#include <fmt/format.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vemora/platform/tags/tag_filter_error.h"
#include "vemora/platform/utils/json_elements.h"
#include "vemora/platform/utils/json_members.h"

namespace kuv::vemora::Vemora_Tags_JSON_Converter {
namespace {

using Terms = std::set<ODB_Utils::Tag_Search_Term>;

/// What is wrong with the filter.
class Faults {
 public:
  void add(const Json::Value& wrong, std::string message) {
    found_.push_back({std::move(message), static_cast<std::size_t>(wrong.getOffsetStart())});
  }

  void throw_if_any() {
    if (!found_.empty()) {
      throw Tag_Filter_Error(std::move(found_));
    }
  }

 private:
  std::vector<Tag_Filter_Error::Fault> found_;
};

/// One wanted value of a tag; false when `value` is none.
bool add_term(std::string_view name, const Json::Value& value, Terms& terms) {
  const char* begin = nullptr;
  const char* end = nullptr;
  const bool is_text = value.getString(&begin, &end);
  if (!is_text && !value.isNull()) {
    return false;
  }
  ODB_Utils::Tag_Search_Term term{std::string(name), std::nullopt};
  if (is_text) {
    term.value.emplace(begin, end);
  }
  terms.insert(terms.end(), std::move(term));  // mostly they are in order
  return true;
}

/// One fault a tag at most: it names the tag, and a name may be as long as the document.
void add_terms(std::string_view name, const Json::Value& wanted, Terms& terms, Faults& faults) {
  if (!wanted.isArray()) {
    if (!add_term(name, wanted, terms)) {
      faults.add(wanted,
                 fmt::format("Tag \"{}\" must be a string, null or an array of them.", name));
    }
    return;
  }
  if (wanted.empty()) {
    faults.add(wanted, fmt::format("Tag \"{}\" has an empty array.", name));
  }
  for (const auto& [index, value] : kuv::utils::Json_Elements(wanted)) {
    if (!add_term(name, value, terms)) {
      faults.add(value, fmt::format("Tag \"{}\" must be an array of strings and nulls.", name));
      return;
    }
  }
}

}  // namespace

Terms parse_search_tags(const Json::Value& tags) {
  Terms terms;
  Faults faults;
  if (!tags.isObject()) {
    faults.add(tags, "A tag filter must be a JSON object.");
    faults.throw_if_any();
  }
  for (const auto& [name, wanted] : kuv::utils::Json_Members(tags)) {
    add_terms(name, wanted, terms, faults);
  }
  faults.throw_if_any();
  return terms;
}

}  // namespace kuv::vemora::Vemora_Tags_JSON_Converter
