#include "vemora/embedded_server/host/fault_locator.h"

#include <exception>
#include <functional>
#include <regex>
#include <set>
#include <sstream>

namespace kuv::vemora::embedded_server {
namespace {

/// What the parser says of a piece; empty when it takes it.
std::string verdict(const std::function<void()>& parse) {
  try {
    parse();
    return {};
  } catch (const std::exception& error) {
    return error.what();
  }
}

Json::Value document_of(const char* key, const Json::Value& element) {
  Json::Value document(Json::objectValue);
  document[key].append(element);
  return document;
}

/// Follows the key that a message names first ("activityDuration.mode") as far as there is one.
const Json::Value* follow_named_key(const Json::Value& from, const std::string& message) {
  static const std::regex quoted("\"([A-Za-z.]+)\"");
  std::smatch found;
  const Json::Value* place = &from;
  if (!std::regex_search(message, found, quoted)) {
    return place;
  }
  std::istringstream path(found[1]);
  for (std::string key; std::getline(path, key, '.');) {
    if (!place->isObject() || !place->isMember(key)) {
      break;
    }
    place = &(*place)[key];
  }
  return place;
}

std::optional<std::uint64_t> id_of(const Json::Value& trigger) {
  return trigger.isObject() && trigger["id"].isUInt64()
             ? std::make_optional(trigger["id"].asUInt64())
             : std::nullopt;
}

/// The source that is rejected by itself, or the trigger.
const Json::Value* narrow_to_source(const Json::Value& trigger, const std::string& message,
                                    const std::function<std::string(const Json::Value&)>& say) {
  if (!trigger.isObject() || !trigger["sources"].isArray()) {
    return &trigger;
  }
  for (const Json::Value& source : trigger["sources"]) {
    Json::Value alone = trigger;
    alone["sources"] = Json::Value(Json::arrayValue);
    alone["sources"].append(source);
    if (say(alone) == message) {
      // Were it the trigger itself, it would be rejected without this source too.
      alone["sources"][0] = Json::Value(Json::objectValue);
      alone["sources"][0]["type"] = "external";
      return say(alone) == message ? &trigger : &source;
    }
  }
  return &trigger;
}

}  // namespace

Rejected_Part locate_in_properties(const Json::Value& config, const std::string& message) {
  return {follow_named_key(config, message), std::nullopt, std::nullopt};
}

Rejected_Part locate_in_mapping(Trigger_Parser& parser, const Json::Value& mapping,
                                const std::string& message) {
  const Json::Value* associations = mapping.isObject() ? &mapping["triggerMapping"] : nullptr;
  if (associations == nullptr || !associations->isArray()) {
    return {follow_named_key(mapping, message), std::nullopt, std::nullopt};
  }
  for (Json::ArrayIndex index = 0; index < associations->size(); ++index) {
    const Json::Value& association = (*associations)[index];
    const auto parse = [&] {
      parser.parse_trigger_mapping(document_of("triggerMapping", association));
    };
    if (verdict(parse) == message) {
      return {follow_named_key(association, message), index, std::nullopt};
    }
  }
  return {associations, std::nullopt, std::nullopt};
}

Rejected_Part locate_in_triggers(Trigger_Parser& parser, const Json::Value& config,
                                 const Trigger_Mapping& mapping, const std::string& message) {
  const Json::Value* triggers = config.isObject() ? &config["triggers"] : nullptr;
  if (triggers == nullptr || !triggers->isArray()) {
    return {follow_named_key(config, message), std::nullopt, std::nullopt};
  }
  Json::Value empty(Json::objectValue);
  empty["triggers"] = Json::Value(Json::arrayValue);
  if (verdict([&] { parser.parse_trigger_configs(empty, mapping); }) == message) {
    return {};  // the server is unknown, whatever its triggers are
  }
  const auto say = [&](const Json::Value& trigger) {
    return verdict(
        [&] { parser.parse_trigger_configs(document_of("triggers", trigger), mapping); });
  };
  std::set<std::uint64_t> kept;
  for (Json::ArrayIndex index = 0; index < triggers->size(); ++index) {
    const Json::Value& trigger = (*triggers)[index];
    if (say(trigger) == message) {
      const Json::Value* const narrowed = narrow_to_source(trigger, message, say);
      return {follow_named_key(*narrowed, message), index, id_of(trigger)};
    }
    const auto parsed = parser.parse_trigger_configs(document_of("triggers", trigger), mapping);
    if (!parsed.empty() && !kept.insert(parsed.front().id).second) {
      return {&trigger["id"], index, id_of(trigger)};
    }
  }
  return {triggers, std::nullopt, std::nullopt};
}

}  // namespace kuv::vemora::embedded_server
