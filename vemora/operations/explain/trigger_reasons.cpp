// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/explain/trigger_reasons.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string>
#include <string_view>

#include "vemora/operations/site/distinct_texts.h"
#include "vemora/operations/site/tag_texts.h"
#include "vemora/operations/warnings/found_warnings.h"
#include "vemora/operations/warnings/schedule_look_up.h"

namespace kuv::vemora::operations {
namespace {

Reason reason_of_server(const Site_View& site, const Trigger_Config& config) {
  return {"server-filter", fmt::format("The server filter asks for {}; server {} ({}) has {}.",
                                       described(config.tags.server), site.server_id(),
                                       in_quotes(site.here().name), described(site.here().tags))};
}

bool lists(const Json::Value& ids, std::uint64_t wanted) {
  return std::any_of(ids.begin(), ids.end(),
                     [wanted](const Json::Value& id) { return id.asUInt64() == wanted; });
}

/// Where a schedule stands that keeps the trigger from being active.
struct Listing {
  bool in_own_list = false;
  bool in_mapping = false;

  const char* text() const {
    if (in_own_list && in_mapping) {
      return "the trigger's own list and an association of the mapping name it";
    }
    return in_own_list ? "the trigger's own list names it"
                       : "an association of the mapping with the trigger names it";
  }
};

std::map<std::uint64_t, Listing> listed_schedules(const Site_View& site,
                                                  const Configured_Trigger& trigger) {
  std::map<std::uint64_t, Listing> listed;
  for (const Json::Value& id : (*trigger.element)["scheduleIds"]) {
    listed[id.asUInt64()].in_own_list = true;
  }
  for (const Json::Value& association : site.mapping()["triggerMapping"]) {
    if (lists(association["triggerIds"], trigger.config->id)) {
      for (const Json::Value& id : association["scheduleIds"]) {
        listed[id.asUInt64()].in_mapping = true;
      }
    }
  }
  return listed;
}

void add_reasons_of_schedules(const Site_View& site, const Configured_Trigger& trigger,
                              Reasons& reasons) {
  Schedule_Look_Up schedules(site.repository());
  for (const auto& [id, listing] : listed_schedules(site, trigger)) {
    if (const Schedule_Fault* const fault = schedules.fault_of(id)) {
      reasons.push_back({fault->code, fmt::format("{}; {}.", fault->text, listing.text())});
    }
  }
}

std::string types_of(const Json::Value& sources) {
  Distinct_Texts types;
  for (const Json::Value& source : sources) {
    types.add(source["type"].asString());
  }
  return described(types.texts());
}

}  // namespace

Configured_Trigger find_configured(const Site_View& site, std::uint64_t trigger_id) {
  Configured_Trigger found;
  for (const Judged_Trigger& trigger : site.triggers()) {
    if (trigger.subject.id == trigger_id && found.config == nullptr) {
      found = {&trigger.element, trigger.config};
    }
  }
  return found;
}

Reasons reasons_of_inactivity(const Site_View& site, const Configured_Trigger& trigger) {
  if (trigger.element == nullptr) {
    return {{"not-in-configuration", site.has_config() ? "The configuration has no such trigger."
                                                       : "No configuration is stored yet."}};
  }
  if (trigger.config == nullptr) {
    return {
        {"no-usable-source",
         fmt::format("None of its sources can be subscribed to, so the trigger is left out: {}.",
                     types_of((*trigger.element)["sources"]))}};
  }
  Reasons reasons;
  if (!trigger.config->matches_server) {
    reasons.push_back(reason_of_server(site, *trigger.config));
  }
  if (trigger.config->schedule_invalid) {
    add_reasons_of_schedules(site, trigger, reasons);
  }
  return reasons;
}

Reason reason_of_failure(const Site_View& site, std::uint64_t trigger_id) {
  const std::string beginning = fmt::format("Trigger {}: ", trigger_id);
  for (const std::string& error : site.errors()) {
    if (std::string_view(error).substr(0, beginning.size()) == beginning) {
      return {"failed", "A pass fails here: " + error};
    }
  }
  return {"failed", "A pass fails here."};
}

}  // namespace kuv::vemora::operations
