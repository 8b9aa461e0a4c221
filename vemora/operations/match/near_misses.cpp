// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/match/near_misses.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "vemora/operations/explain/camera_reasons.h"
#include "vemora/operations/explain/explainer.h"
#include "vemora/operations/explain/trigger_reasons.h"
#include "vemora/operations/site/tag_texts.h"
#include "vemora/operations/warnings/found_warnings.h"
#include "vemora/trigger_manager/search_items.h"

namespace kuv::vemora::operations {
namespace {

/// The search items that are meant by an object's type: what they stand for, or that very name.
struct Meant {
  bool by_name = false;  ///< a source has the type, which is a general one
  bool found = false;    ///< a source stands for the type
  bool motion_required = false;
};

Meant meant_by(const Site_View& site, const Trigger_Config& config, const std::string& type) {
  trigger record;
  record.sources = config.sources;
  Meant meant;
  for (const Object_Search_Item& item : search_items(record)) {
    meant.by_name = meant.by_name || item.object_type == type;
  }
  for (const Object_Search_Item& item : site.objects_of(record)) {
    if (item.object_type == type) {
      meant.found = true;
      meant.motion_required = item.motion_required;
    }
  }
  return meant;
}

bool has_source_of(const Trigger_Config& config, Trigger_Source_Type type) {
  return std::any_of(config.sources.begin(), config.sources.end(),
                     [type](const Trigger_Source& source) { return source.type == type; });
}

bool asks_for(const Site_View& site, const Trigger_Config& config, const Event& event) {
  switch (event.kind) {
    case Event::Kind::topic: {
      const std::vector<std::string> topics = config.all_source_topics();
      return std::find(topics.begin(), topics.end(), event.text) != topics.end();
    }
    case Event::Kind::object: {
      const Meant meant = meant_by(site, config, event.text);
      return meant.by_name || meant.found;
    }
    case Event::Kind::motion:
      return has_source_of(config, Trigger_Source_Type::motion_detection);
    case Event::Kind::subscription:
      return has_source_of(config, Trigger_Source_Type::metadata_event);
  }
  return false;
}

}  // namespace

std::optional<Reason> reason_not_to_expect(const Site_View& site, const Event& event) {
  const auto found = site.cameras().find(event.place);
  if (event.kind == Event::Kind::subscription || found == site.cameras().end()) {
    return std::nullopt;
  }
  const camera& record = *found->second;
  if (event.kind == Event::Kind::object && !record.object_detection) {
    return reason_of_no_object_detection(record.id);
  }
  if (event.kind == Event::Kind::motion && !record.motion_detection) {
    return reason_of_no_motion_detection(record.id);
  }
  return std::nullopt;
}

Reasons Why_Not::told_of(const Event& event) const {
  if (holds(after_refresh_.told_of(event), id_)) {
    return {{"not-refreshed", "A refresh would let it be told of this."}};
  }
  const Trigger_Config* const config = explainer_.config();
  if (config != nullptr && !asks_for(site_, *config, event)) {
    return {{"no-such-source", "It has no source for such events."}};
  }
  switch (event.kind) {
    case Event::Kind::topic:
      return explainer_.rules_against_topic(event.place, event.text);
    case Event::Kind::subscription:
      return explainer_.rules_against_subscription(event.place);
    default:
      return reasons_of_detection(event);
  }
}

Reasons Why_Not::reasons_of_detection(const Event& event) const {
  Reasons reasons = explainer_.inactivity();
  if (reasons.empty()) {
    reasons = explainer_.reasons_of_selection(event.place);
  }
  if (explainer_.config() != nullptr) {
    if (std::optional<Reason> reason = reason_not_to_expect(site_, event)) {
      reasons.push_back(*std::move(reason));
    }
    add_reasons_of_object(event, reasons);
  }
  return reasons.empty() ? Reasons{reason_of_failure(site_, id_)} : reasons;
}

void Why_Not::add_reasons_of_object(const Event& event, Reasons& reasons) const {
  if (event.kind != Event::Kind::object) {
    return;
  }
  const Meant meant = meant_by(site_, *explainer_.config(), event.text);
  if (meant.by_name && !meant.found) {
    reasons.push_back(
        {"general-object-type",
         fmt::format("Object type {} stands for {}; what is detected has one of those.",
                     in_quotes(event.text), described(site_.resolver().resolve({event.text})))});
  } else if (meant.motion_required && !event.in_motion) {
    reasons.push_back(
        {"motion-required",
         fmt::format("It asks for {} in motion; this one stands still.", in_quotes(event.text))});
  }
}

std::vector<Match::Near_Miss> near_misses(const Site_View& site, const Event& event,
                                          const Listeners::Ids& told) {
  const Listeners after_refresh(site.refreshed(), site.resolver());
  std::map<std::uint64_t, Match::Near_Miss> found;
  for (const Judged_Trigger& trigger : site.triggers()) {
    const Trigger_Config* const config = trigger.config;
    if (config != nullptr && !holds(told, config->id) && asks_for(site, *config, event)) {
      found[config->id] = {{config->id, config->name},
                           Why_Not(site, after_refresh, config->id).told_of(event)};
    }
  }
  std::vector<Match::Near_Miss> list;
  list.reserve(found.size());
  for (auto& [id, near_miss] : found) {
    list.push_back(std::move(near_miss));
  }
  return list;
}

}  // namespace kuv::vemora::operations
