#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <set>
#include <utility>

#include "trigger_parser/fetch_ahead.h"
#include "trigger_parser/find_members.h"
#include "trigger_parser/parse_sources.h"
#include "trigger_parser/validation.h"
#include "vemora/platform/tags/tag_filter.h"
#include "vemora/platform/tags/tags_json_converter.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora {
namespace {

std::set<ODB_Utils::Tag_Search_Term> parse_tag_filter(const Json::Value& filter) {
  return filter.isNull() ? std::set<ODB_Utils::Tag_Search_Term>()
                         : Vemora_Tags_JSON_Converter::parse_search_tags(filter);
}

Trigger_Config::Tags parse_tags(const Json::Value& tags) {
  require(tags.isObject(), "\"tags\" must be a JSON object.");
  const auto [server, camera, event_subscription] =
      find_members(tags, "server", "camera", "eventSubscription");
  Trigger_Config::Tags parsed;
  parsed.server = parse_tag_filter(*server);
  parsed.camera = parse_tag_filter(*camera);
  parsed.event_subscription = parse_tag_filter(*event_subscription);
  return parsed;
}

bool parse_any_time(const Json::Value& any_time) {
  require(any_time.isNull() || any_time.isBool(), "\"anyTime\" field is invalid.");
  return any_time.isBool() && any_time.asBool();
}

}  // namespace

std::vector<Trigger_Config> Vemora_Trigger_Parser::parse_trigger_configs(
    const Json::Value& document, const Trigger_Mapping& mapping) {
  require(document.isObject(), "Trigger configuration must be a JSON object.");
  const Json::Value& triggers = document["triggers"];
  require(triggers.isArray(), "Missing \"triggers\" array.");
  const std::map<std::string, Tag_Info> server_tags = get_latest_server_tags_();

  std::vector<Trigger_Config> configs;
  configs.reserve(triggers.size());
  // In order, not hashed: whoever chooses the ids could choose ones that all meet in one bucket.
  std::set<std::uint64_t> kept_ids;
  const auto end = triggers.end();
  for (auto element = triggers.begin(); element != end;) {
    const Json::Value& trigger = *element;
    if (++element != end) {
      fetch_ahead(*element);
    }
    require(trigger.isObject(), "\"triggers\" must be an array of JSON objects.");
    std::optional<Trigger_Config> config = parse_trigger_config_(trigger, mapping);
    if (!config) {
      continue;
    }
    const std::size_t kept = kept_ids.size();
    kept_ids.insert(kept_ids.end(), config->id);  // ids mostly ascend
    if (kept_ids.size() == kept) {
      raise_validation_error(
          fmt::format("All \"id\" values must be unique, {} is duplicated.", config->id));
    }
    config->matches_server = Tag_Filter::matches_any(server_tags, config->tags.server);
    configs.push_back(std::move(*config));
  }
  return configs;
}

std::optional<Trigger_Config> Vemora_Trigger_Parser::parse_trigger_config_(
    const Json::Value& trigger, const Trigger_Mapping& mapping) {
  const auto [id, name, tags, sources, any_time] =
      find_members(trigger, "id", "name", "tags", "sources", "anyTime");
  std::optional<Trigger_Config> config(std::in_place);
  require(id->isUInt64(), "\"id\" field is missing or invalid.");
  config->id = id->asUInt64();
  require(name->isString(), "\"name\" field is missing or invalid.");
  config->name = name->asString();
  config->tags = parse_tags(*tags);
  config->sources = parse_sources(*sources);
  config->options.any_time = parse_any_time(*any_time);
  if (config->sources.empty()) {
    // Every source fires by itself or is of a kind that only newer servers know. The trigger may
    // well run there; on this server it has nothing to listen to.
    config.reset();
  } else {
    set_trigger_mapping_in_config_(*config, trigger, mapping);
  }
  return config;
}

}  // namespace kuv::vemora
