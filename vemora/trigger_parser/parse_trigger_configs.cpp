#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <set>
#include <utility>

#include "vemora/platform/tags/tag_filter.h"
#include "vemora/trigger_parser/faults.h"
#include "vemora/trigger_parser/fetch_ahead.h"
#include "vemora/trigger_parser/find_members.h"
#include "vemora/trigger_parser/parse_sources.h"
#include "vemora/trigger_parser/parse_tags.h"
#include "vemora/trigger_parser/require_configuration.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora {
namespace {

bool parse_any_time(const Json::Value& any_time, Faults& faults) {
  const bool valid = any_time.isNull() || any_time.isBool();
  return faults.require(valid, any_time, "\"anyTime\" field is invalid.") && any_time.isBool() &&
         any_time.asBool();
}

/// The triggers that are kept, in the order of the document.
class Kept_Triggers {
 public:
  explicit Kept_Triggers(std::size_t most) : most_(most) {}

  /// Whether no trigger has had that id.
  bool add_id(std::uint64_t id) {
    const std::size_t before = ids_.size();
    ids_.insert(ids_.end(), id);  // ids mostly ascend
    return ids_.size() > before;
  }

  void add(Trigger_Config&& config) {
    if (configs_.empty()) {
      configs_.reserve(most_);
    }
    configs_.push_back(std::move(config));
  }

  std::vector<Trigger_Config> take() { return std::move(configs_); }

 private:
  std::size_t most_;
  // In order, not hashed: whoever chooses the ids could choose ones that all meet in one bucket.
  std::set<std::uint64_t> ids_;
  std::vector<Trigger_Config> configs_;
};

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
  if (!faults.require(triggers.isArray(), Member{triggers, document},
                      "Missing \"triggers\" array.")) {
    return {};
  }
  const std::map<std::string, Tag_Info> server_tags = get_latest_server_tags_(faults);

  Kept_Triggers kept(triggers.size());
  std::size_t index = 0;
  const auto end = triggers.end();
  for (auto element = triggers.begin(); element != end; ++index) {
    const Json::Value& trigger = *element;
    if (++element != end) {
      fetch_ahead(*element);
    }
    faults.enter_element(index);
    if (!faults.require(trigger.isObject(), trigger,
                        "\"triggers\" must be an array of JSON objects.")) {
      continue;
    }
    std::optional<Trigger_Config> config = parse_trigger_config_(trigger, mapping, faults);
    if (!config) {
      continue;
    }
    if (faults.is_named() && !kept.add_id(config->id)) {
      faults.add(trigger["id"],
                 fmt::format("All \"id\" values must be unique, {} is duplicated.", config->id));
    }
    if (faults.count() == 0) {
      config->matches_server = Tag_Filter::matches_any(server_tags, config->tags.server);
      kept.add(std::move(*config));
    }
  }
  return kept.take();
}

std::optional<Trigger_Config> Vemora_Trigger_Parser::parse_trigger_config_(
    const Json::Value& trigger, const Trigger_Mapping& mapping, Faults& faults) {
  const auto [id, name, tags, sources, any_time] =
      find_members(trigger, "id", "name", "tags", "sources", "anyTime");
  std::optional<Trigger_Config> config(std::in_place);
  if (faults.require(id->isUInt64(), Member{*id, trigger}, "\"id\" field is missing or invalid.")) {
    config->id = id->asUInt64();
    faults.name_trigger(config->id);
  }
  if (faults.require(name->isString(), Member{*name, trigger},
                     "\"name\" field is missing or invalid.")) {
    config->name = name->asString();
  }
  parse_tags({*tags, trigger}, config->tags, faults);
  const std::size_t before_sources = faults.count();
  config->sources = parse_sources({*sources, trigger}, faults);
  const bool sources_are_valid = faults.count() == before_sources;
  config->options.any_time = parse_any_time(*any_time, faults);
  if (config->sources.empty() && sources_are_valid) {
    // Every source fires by itself or is of a kind that only newer servers know. The trigger may
    // well run there; on this server it has nothing to listen to.
    config.reset();
  } else {
    set_trigger_mapping_in_config_(*config, trigger, mapping, faults);
  }
  return config;
}

}  // namespace kuv::vemora
