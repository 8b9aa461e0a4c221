// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "vemora/platform/tags/tag_filter.h"
#include "vemora/platform/utils/json_elements.h"
#include "vemora/trigger_parser/faults.h"
#include "vemora/trigger_parser/members.h"
#include "vemora/trigger_parser/parse_sources.h"
#include "vemora/trigger_parser/parse_tags.h"
#include "vemora/trigger_parser/prefetch.h"
#include "vemora/trigger_parser/require_configuration.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora {
namespace {

bool parse_any_time(const Json::Value& any_time, Faults& faults) {
  const bool valid = any_time.isNull() || any_time.isBool();
  return faults.require(valid, any_time, "\"anyTime\" field is invalid.") && any_time.isBool() &&
         any_time.asBool();
}

/// The ids so far. In order, not hashed: whoever chooses the ids could choose ones that all meet in
/// one bucket.
class Ids {
 public:
  /// False when the id is among them already.
  bool add(std::uint64_t id) {
    if (ascending_.empty() || id > ascending_.back()) {  // ids mostly ascend
      ascending_.push_back(id);
      return true;
    }
    return !std::binary_search(ascending_.begin(), ascending_.end(), id) &&
           others_.insert(id).second;
  }

 private:
  std::vector<std::uint64_t> ascending_;
  std::set<std::uint64_t> others_;  ///< each less than an id before it
};

/// How many triggers to make room for: not for more than the text of the array can have. One that
/// was built, and not read from a text, may have very few elements at very large indexes.
std::size_t likely_triggers_of(const Json::Value& triggers) {
  constexpr std::ptrdiff_t shortest_trigger = 50;  // bytes
  const std::ptrdiff_t length =
      std::max<std::ptrdiff_t>(triggers.getOffsetLimit() - triggers.getOffsetStart(), 0);
  return std::min<std::size_t>(triggers.size(),
                               static_cast<std::size_t>(length / shortest_trigger));
}

}  // namespace

std::vector<Trigger_Config> Vemora_Trigger_Parser::parse_trigger_configs(
    const Json::Value& document, const Trigger_Mapping& mapping) {
  Faults faults;
  return parse_trigger_configs_(document, mapping, faults);
}

std::vector<Trigger_Config> Vemora_Trigger_Parser::parse_trigger_configs(
    const Json::Value& document, const Trigger_Mapping& mapping, Fault_Sink& sink) {
  Faults faults(sink);
  return parse_trigger_configs_(document, mapping, faults);
}

std::vector<Trigger_Config> Vemora_Trigger_Parser::parse_trigger_configs_(
    const Json::Value& document, const Trigger_Mapping& mapping, Faults& faults) {
  if (!require_configuration(document, faults)) {
    return {};
  }
  const Json::Value& triggers = document["triggers"];
  if (!faults.require(triggers.isArray(), Member(triggers, document),
                      "Missing \"triggers\" array.")) {
    return {};
  }
  const std::map<std::string, Tag_Info> server_tags = get_latest_server_tags_(faults);

  std::vector<Trigger_Config> kept;
  kept.reserve(likely_triggers_of(triggers));
  Ids kept_ids;
  Source_Types types;
  for (const auto& [index, trigger] : kuv::utils::Json_Elements(triggers)) {
    prefetch_behind(trigger);
    faults.enter_element(index);
    if (!faults.require(trigger.isObject(), Member(trigger, triggers),
                        "\"triggers\" must be an array of JSON objects.")) {
      continue;
    }
    std::optional<Trigger_Config> config = parse_trigger_config_(trigger, mapping, types, faults);
    if (!config) {
      continue;
    }
    if (faults.is_named() && !kept_ids.add(config->id)) {
      faults.add(trigger["id"],
                 fmt::format("All \"id\" values must be unique, {} is duplicated.", config->id));
    }
    if (faults.count() == 0) {
      config->matches_server = Tag_Filter::matches_any(server_tags, config->tags.server);
      kept.push_back(std::move(*config));
    }
  }
  return kept;
}

std::optional<Trigger_Config> Vemora_Trigger_Parser::parse_trigger_config_(
    const Json::Value& trigger, const Trigger_Mapping& mapping, Source_Types& types,
    Faults& faults) {
  Member id, name, tags, sources, any_time, schedule_ids;
  find_members(trigger, Wanted{"id", id}, Wanted{"name", name}, Wanted{"tags", tags},
               Wanted{"sources", sources}, Wanted{"anyTime", any_time},
               Wanted{"scheduleIds", schedule_ids});
  std::optional<Trigger_Config> config(std::in_place);
  if (faults.require(id->isUInt64(), id, "\"id\" field is missing or invalid.")) {
    config->id = id->asUInt64();
    faults.name_trigger(config->id);
  }
  const auto text = text_of(*name);
  if (faults.require(text.has_value(), name, "\"name\" field is missing or invalid.")) {
    config->name = *text;
  }
  parse_tags(tags, config->tags, faults);
  const std::size_t before_sources = faults.count();
  config->sources = parse_sources(sources, types, faults);
  const bool sources_are_valid = faults.count() == before_sources;
  config->options.any_time = parse_any_time(*any_time, faults);
  if (config->sources.empty() && sources_are_valid) {
    // Every source fires by itself or is of a kind that only newer servers know. The trigger may
    // well run there; on this server it has nothing to listen to.
    config.reset();
  } else {
    set_trigger_mapping_in_config_(*config, *schedule_ids, mapping, faults);
  }
  return config;
}

}  // namespace kuv::vemora
