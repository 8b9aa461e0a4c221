// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <json/value.h>

#include <string>
#include <vector>

#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {

// The tags of any kind of record: a set of entries, or a map.

template <class Tags>
Json::Value tags_to_json(const Tags& tags) {
  Json::Value object(Json::objectValue);
  for (const auto& [name, info] : tags) {
    object[name] = info.value ? Json::Value(*info.value) : Json::Value();
  }
  return object;
}

template <class Tags>
std::string describe_tags(const Tags& tags) {
  std::vector<std::string> texts;
  texts.reserve(tags.size());
  for (const auto& [name, info] : tags) {
    texts.push_back(embedded_server::printable(info.value ? name + "=" + *info.value : name));
  }
  return fmt::format("{}", fmt::join(texts, " "));
}

}  // namespace kuv::vemora::tools
