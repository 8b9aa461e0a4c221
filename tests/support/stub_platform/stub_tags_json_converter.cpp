// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "support/stub_platform/stub_platform.h"
#include "vemora/platform/tags/tags_json_converter.h"

namespace stub = kuv::test::stub_platform;

namespace kuv::vemora::Vemora_Tags_JSON_Converter {

/// Knows strings alone.
std::set<ODB_Utils::Tag_Search_Term> parse_search_tags(const Json::Value& tags) {
  stub::called(stub::Function::parse_search_tags, "parse_search_tags");
  std::set<ODB_Utils::Tag_Search_Term> terms;
  for (const std::string& name : tags.getMemberNames()) {
    terms.insert({name, tags[name].asString()});
  }
  return terms;
}

}  // namespace kuv::vemora::Vemora_Tags_JSON_Converter
