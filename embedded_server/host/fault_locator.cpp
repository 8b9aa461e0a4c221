#include "vemora/embedded_server/host/fault_locator.h"

#include <exception>
#include <functional>
#include <regex>
#include <set>
#include <sstream>
#include <string_view>

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

/// Asks for one trigger after the other, as the parser takes them.
class Trigger_Walk {
 public:
  Trigger_Walk(Trigger_Parser& parser, const Trigger_Mapping& mapping)
      : parser_(parser), mapping_(mapping) {}

  std::vector<Rejected_Part> rejections(const Json::Value& triggers) {
    std::vector<Rejected_Part> found;
    for (Json::ArrayIndex index = 0; index < triggers.size(); ++index) {
      if (auto rejection = rejection_of(triggers[index])) {
        rejection->index = index;
        rejection->id = id_of(triggers[index]);
        found.push_back(*std::move(rejection));
      }
    }
    return found;
  }

 private:
  std::vector<Trigger_Config> parse(const Json::Value& trigger) {
    return parser_.parse_trigger_configs(document_of("triggers", trigger), mapping_);
  }

  std::string say(const Json::Value& trigger) {
    return verdict([&] { parse(trigger); });
  }

  std::optional<Rejected_Part> rejection_of(const Json::Value& trigger) {
    std::vector<Trigger_Config> parsed;
    const std::string message = verdict([&] { parsed = parse(trigger); });
    if (!message.empty()) {
      const Json::Value* const narrowed =
          narrow_to_source(trigger, message, [this](const Json::Value& one) { return say(one); });
      return Rejected_Part{message, follow_named_key(*narrowed, message), {}, {}};
    }
    if (!parsed.empty() && !kept_.insert(parsed.front().id).second) {
      return Rejected_Part{complaint_of_twins(trigger), &trigger["id"], {}, {}};
    }
    return std::nullopt;
  }

  std::string complaint_of_twins(const Json::Value& trigger) {
    Json::Value twins = document_of("triggers", trigger);
    twins["triggers"].append(trigger);
    return verdict([&] { parser_.parse_trigger_configs(twins, mapping_); });
  }

  Trigger_Parser& parser_;
  const Trigger_Mapping& mapping_;
  std::set<std::uint64_t> kept_;
};

std::vector<Rejected_Part> rejections_of_associations(Trigger_Parser& parser,
                                                      const Json::Value& associations) {
  std::vector<Rejected_Part> found;
  for (Json::ArrayIndex index = 0; index < associations.size(); ++index) {
    const Json::Value& association = associations[index];
    const std::string message =
        verdict([&] { parser.parse_trigger_mapping(document_of("triggerMapping", association)); });
    if (!message.empty()) {
      found.push_back({message, follow_named_key(association, message), index, std::nullopt});
    }
  }
  return found;
}

/// What is said of the elements of an array explains what is said of the whole; if it does not, the
/// array is as near as one gets.
std::vector<Rejected_Part> explained(const std::string& message, const Json::Value& array,
                                     std::vector<Rejected_Part> elements) {
  if (elements.empty() || elements.front().message != message) {
    elements.insert(elements.begin(), {message, &array, std::nullopt, std::nullopt});
  }
  return elements;
}

const Json::Value* array_in(const Json::Value& document, const char* key) {
  const Json::Value* const found =
      document.isObject() ? document.find(key, key + std::string_view(key).size()) : nullptr;
  return found != nullptr && found->isArray() ? found : nullptr;
}

}  // namespace

std::vector<Rejected_Part> rejections_of_properties(Trigger_Parser& parser,
                                                    const Json::Value& config) {
  const std::string message = verdict([&] { parser.parse_config_properties(config); });
  if (message.empty()) {
    return {};
  }
  return {{message, follow_named_key(config, message), std::nullopt, std::nullopt}};
}

std::vector<Rejected_Part> rejections_of_mapping(Trigger_Parser& parser,
                                                 const Json::Value& mapping) {
  const std::string message = verdict([&] { parser.parse_trigger_mapping(mapping); });
  if (message.empty()) {
    return {};
  }
  const Json::Value* const associations = array_in(mapping, "triggerMapping");
  if (associations == nullptr) {
    return {{message, follow_named_key(mapping, message), std::nullopt, std::nullopt}};
  }
  return explained(message, *associations, rejections_of_associations(parser, *associations));
}

std::vector<Rejected_Part> rejections_of_triggers(Trigger_Parser& parser, const Json::Value& config,
                                                  const Trigger_Mapping& mapping) {
  const std::string message = verdict([&] { parser.parse_trigger_configs(config, mapping); });
  if (message.empty()) {
    return {};
  }
  const Json::Value* const triggers = array_in(config, "triggers");
  if (triggers == nullptr) {
    return {{message, follow_named_key(config, message), std::nullopt, std::nullopt}};
  }
  Json::Value empty(Json::objectValue);
  empty["triggers"] = Json::Value(Json::arrayValue);
  if (verdict([&] { parser.parse_trigger_configs(empty, mapping); }) == message) {
    return {{message, nullptr, std::nullopt, std::nullopt}};  // whatever its triggers are
  }
  return explained(message, *triggers, Trigger_Walk(parser, mapping).rejections(*triggers));
}

}  // namespace kuv::vemora::embedded_server
