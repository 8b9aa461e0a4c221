// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/tags/tags_json_converter.h"

namespace kuv::vemora::Vemora_Tags_JSON_Converter {

std::set<ODB_Utils::Tag_Search_Term> parse_search_tags(const Json::Value& tags) {
  std::set<ODB_Utils::Tag_Search_Term> terms;
  for (const std::string& name : tags.getMemberNames()) {
    terms.insert({name, {}});
  }
  return terms;
}

}  // namespace kuv::vemora::Vemora_Tags_JSON_Converter
