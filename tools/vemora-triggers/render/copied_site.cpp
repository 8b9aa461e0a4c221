// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/copied_site.h"

#include <fmt/format.h>

#include "tools/vemora-triggers/render/counted.h"

namespace kuv::vemora::tools {

using embedded_server::Site_Counts;

Json::Value to_json(const Site_Counts& counts) {
  Json::Value records(Json::objectValue);
  records["triggers"] = Json::UInt64(counts.triggers);
  records["subscriptions"] = Json::UInt64(counts.subscriptions);
  records["cameras"] = Json::UInt64(counts.cameras);
  return records;
}

std::string in_words(const Site_Counts& counts) {
  return fmt::format("{}, {}, {}", counted(counts.triggers, "trigger", "triggers"),
                     counted(counts.subscriptions, "subscription", "subscriptions"),
                     counted(counts.cameras, "camera", "cameras"));
}

}  // namespace kuv::vemora::tools
