// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/init.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <string>

#include "tools/vemora-triggers/render/counted.h"
#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/mass_deletions.h"
#include "tools/vemora-triggers/render/pass.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::Inventory;
using embedded_server::Inventory_Counts;
using embedded_server::printable;
using embedded_server::Pruned_Records;

constexpr std::size_t most_named = 100;  ///< of a kind, for people

constexpr const char* lets_it_pass = "If that is meant, --allow-mass-deletion lets it pass.";

/// An inventory, or what a prune removes.
template <class Records>
Inventory_Counts counts_of(const Records& records) {
  return {records.servers.size(),    records.cameras.size(),       records.schedules.size(),
          records.categories.size(), records.subscriptions.size(), records.object_types.size()};
}

Json::Value counts_to_json(const Inventory_Counts& counts) {
  Json::Value records(Json::objectValue);
  records["servers"] = Json::UInt64(counts.servers);
  records["cameras"] = Json::UInt64(counts.cameras);
  records["schedules"] = Json::UInt64(counts.schedules);
  records["eventCategories"] = Json::UInt64(counts.categories);
  records["subscriptions"] = Json::UInt64(counts.subscriptions);
  records["objectTypes"] = Json::UInt64(counts.object_types);
  return records;
}

Json::Value removed_to_json(const Pruned_Records::Record& record) {
  Json::Value object(Json::objectValue);
  object["id"] = Json::UInt64(record.id);
  object["name"] = record.name;
  return object;
}

Json::Value removed_to_json(const Pruned_Records::Camera& record) {
  Json::Value object = removed_to_json(static_cast<const Pruned_Records::Record&>(record));
  object["topicSubscriptions"] = Json::UInt64(record.topic_subscriptions);
  object["detection"] = record.has_detection;
  return object;
}

Json::Value removed_to_json(const std::string& name) {
  return name;
}

template <class Items>
Json::Value removed_list_to_json(const Items& items) {
  Json::Value list(Json::arrayValue);
  for (const auto& item : items) {
    list.append(removed_to_json(item));
  }
  return list;
}

Json::Value removed_counts_to_json(const Pruned_Records& removed) {
  Json::Value counts = counts_to_json(counts_of(removed));
  counts["topicSubscriptions"] = Json::UInt64(removed.topic_subscriptions);
  counts["detection"] = Json::UInt64(removed.eta_cameras);
  return counts;
}

Json::Value removed_records_to_json(const Pruned_Records& removed) {
  Json::Value records(Json::objectValue);
  records["servers"] = removed_list_to_json(removed.servers);
  records["cameras"] = removed_list_to_json(removed.cameras);
  records["schedules"] = removed_list_to_json(removed.schedules);
  records["eventCategories"] = removed_list_to_json(removed.categories);
  records["subscriptions"] = removed_list_to_json(removed.subscriptions);
  records["objectTypes"] = removed_list_to_json(removed.object_types);
  return records;
}

std::vector<std::string> remarks_on(const Pruned_Records& removed) {
  std::vector<std::string> remarks;
  for (const Pruned_Records::Record& kept : removed.kept_servers) {
    remarks.push_back(
        fmt::format("Server {} \"{}\" is not in the inventory, and stays: passes run for it.",
                    kept.id, kept.name));
  }
  return remarks;
}

std::vector<std::string> counted_in_words(const Inventory_Counts& counts) {
  return {counted(counts.servers, "server", "servers"),
          counted(counts.cameras, "camera", "cameras"),
          counted(counts.schedules, "schedule", "schedules"),
          counted(counts.categories, "event category", "event categories"),
          counted(counts.subscriptions, "generic subscription", "generic subscriptions"),
          counted(counts.object_types, "general object type", "general object types")};
}

void print_counts(const char* what, const std::vector<std::string>& counts) {
  std::cout << fmt::format("{}: {}.\n", what, fmt::join(counts, ", "));
}

/// One line for each record, as far as anybody reads.
template <class Items, class Describe>
void print_removed(const Items& items, const char* many, Describe describe) {
  const std::size_t named = std::min(items.size(), most_named);
  for (std::size_t place = 0; place < named; ++place) {
    std::cout << in_red("- " + printable(describe(items[place]))) << '\n';
  }
  if (named < items.size()) {
    std::cout << fmt::format("- {} more {}; use --json to see all.\n", items.size() - named, many);
  }
}

std::function<std::string(const Pruned_Records::Record&)> named_after(const char* kind) {
  return [kind](const Pruned_Records::Record& record) {
    return fmt::format("{} {} \"{}\"", kind, record.id, record.name);
  };
}

std::string describe_removed_camera(const Pruned_Records::Camera& record) {
  std::vector<std::string> with;
  if (record.topic_subscriptions != 0) {
    with.push_back(
        counted(record.topic_subscriptions, "topic subscription", "topic subscriptions"));
  }
  if (record.has_detection) {
    with.emplace_back("its detection record");
  }
  return named_after("camera")(record) +
         (with.empty() ? "" : fmt::format(", with {}", fmt::join(with, " and ")));
}

void print_removed(const Pruned_Records& removed) {
  std::vector<std::string> counts = counted_in_words(counts_of(removed));
  counts.push_back(
      counted(removed.topic_subscriptions, "topic subscription", "topic subscriptions"));
  counts.push_back(counted(removed.eta_cameras, "detection record", "detection records"));
  print_counts("Removed", counts);
  print_removed(removed.servers, "servers", named_after("server"));
  print_removed(removed.cameras, "cameras", describe_removed_camera);
  print_removed(removed.schedules, "schedules", named_after("schedule"));
  print_removed(removed.categories, "event categories", named_after("event category"));
  print_removed(removed.subscriptions, "generic subscriptions",
                named_after("generic subscription"));
  print_removed(removed.object_types, "general object types", [](const std::string& name) {
    return fmt::format("general object type \"{}\"", name);
  });
  for (const std::string& remark : remarks_on(removed)) {
    std::cout << "note: " << printable(remark) << '\n';
  }
}

Json::Value stored_site_to_json(const Stored_Site& site) {
  Json::Value answer(Json::objectValue);
  answer["success"] = true;
  answer["records"] = counts_to_json(counts_of(site.inventory));
  answer["site"] = counts_to_json(site.counts);
  if (site.removed) {
    answer["removed"] = removed_counts_to_json(*site.removed);
    answer["removedRecords"] = removed_records_to_json(*site.removed);
    for (const std::string& remark : remarks_on(*site.removed)) {
      answer["remarks"].append(remark);
    }
  }
  return answer;
}

/// Prints an answer, with its warnings if it has any.
void print_answer(const Json::Value& answer, const Fault_List& warnings) {
  if (warnings.count == 0) {
    print_json(answer);
  } else {
    print_with_warnings(answer, warnings);
  }
}

}  // namespace

void print_stored_site(const Options& options, const Stored_Site& site,
                       const Fault_List& warnings) {
  if (options.json) {
    print_answer(stored_site_to_json(site), warnings);
    return;
  }
  print_for_people(warnings);
  print_counts("Stored", counted_in_words(counts_of(site.inventory)));
  if (site.removed) {
    print_removed(*site.removed);
  }
  print_counts("The site has", counted_in_words(site.counts));
}

void print_refused_prune(const Options& options,
                         const std::vector<embedded_server::Mass_Deletion>& mass_deletions,
                         const Fault_List& warnings) {
  const std::string message =
      fmt::format("With --prune, this inventory would delete {}.", describe(mass_deletions));
  if (!options.json) {
    print_for_people(warnings);
    std::cout << in_red("error: ") << message << "\nnote: " << lets_it_pass
              << "\nRefused; nothing changed.\n";
    return;
  }
  Json::Value answer(Json::objectValue);
  answer["success"] = false;
  answer["errors"][0]["message"] = message;
  answer["remarks"][0] = lets_it_pass;
  answer["massDeletions"] = mass_deletions_to_json(mass_deletions);
  print_answer(answer, warnings);
}

}  // namespace kuv::vemora::tools
