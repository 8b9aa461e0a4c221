// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/change_counts.h"

#include <fmt/format.h>

#include <iostream>

namespace kuv::vemora::tools {
namespace {

using embedded_server::Change_Counts;

Json::Value count_to_json(const Change_Counts::Of& count) {
  Json::Value object(Json::objectValue);
  object["written"] = Json::UInt64(count.written);
  object["deleted"] = Json::UInt64(count.deleted);
  return object;
}

void print_count(const char* what, const Change_Counts::Of& count) {
  if (!count.empty()) {
    std::cout << fmt::format("  {:<20} {:>8} written {:>8} deleted\n", what, count.written,
                             count.deleted);
  }
}

}  // namespace

Json::Value counts_to_json(const Change_Counts& counts) {
  Json::Value object(Json::objectValue);
  object["triggers"] = count_to_json(counts.triggers);
  object["subscriptions"] = count_to_json(counts.subscriptions);
  object["subscriptionLinks"] = count_to_json(counts.subscription_links);
  object["detection"] = count_to_json(counts.detection);
  object["detectionLinks"] = count_to_json(counts.detection_links);
  return object;
}

void print_changed(const Change_Counts& counts) {
  std::cout << "Changed:\n";
  print_count("triggers", counts.triggers);
  print_count("subscriptions", counts.subscriptions);
  print_count("subscription links", counts.subscription_links);
  print_count("detection records", counts.detection);
  print_count("detection links", counts.detection_links);
}

}  // namespace kuv::vemora::tools
