// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// The server's library of tags. Its filters have one value for each tag, or none.

#include <stdexcept>

#include "vemora/platform/tags/tags_json_converter.h"

namespace kuv::vemora::Vemora_Tags_JSON_Converter {

std::set<ODB_Utils::Tag_Search_Term> parse_search_tags(const Json::Value& tags) {
  std::set<ODB_Utils::Tag_Search_Term> terms;
  for (const std::string& name : tags.getMemberNames()) {
    const Json::Value& value = tags[name];
    if (!value.isNull() && !value.isString()) {
      throw std::invalid_argument("the value of the tag \"" + name + "\" must be a string or null");
    }
    terms.insert({name, value.isNull() ? std::nullopt : std::make_optional(value.asString())});
  }
  return terms;
}

}  // namespace kuv::vemora::Vemora_Tags_JSON_Converter
