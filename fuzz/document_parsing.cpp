#include "fuzz/document_parsing.h"

#include <json/json.h>

#include <chrono>
#include <memory>
#include <set>
#include <stdexcept>
#include <utility>

#include "support/fake_repository.h"
#include "support/json.h"
#include "support/message_register.h"
#include "vemora/platform/errors/vemora_error.h"
#include "vemora/platform/tags/tag_filter.h"
#include "vemora/platform/tags/tags_json_converter.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::fuzz {
namespace {

using namespace kuv::vemora;
using namespace std::chrono_literals;

constexpr std::uint64_t server_id = 9;

const Tag_Map& server_tags() {
  static const Tag_Map tags{{"site", {"north"}}, {"indoor", {}}};
  return tags;
}

/// Schedules 1 to 4 can be used, 5 cannot, others do not exist.
test::Fake_Database a_site(bool server_is_known) {
  test::Fake_Database database;
  for (std::uint64_t id = 1; id <= 5; ++id) {
    database.schedules.records[id] = std::make_shared<schedule>(schedule{id, "", id != 5});
  }
  if (server_is_known) {
    database.servers.records[server_id] =
        std::make_shared<server>(server{server_id, "north", server_tags()});
  }
  return database;
}

struct Parsed {
  Notification_Properties properties;
  Trigger_Mapping mapping;
  std::vector<Trigger_Config> configs;
};

Parsed parse(Trigger_Parser& parser, const Json::Value& configuration, const Json::Value& mapping) {
  Parsed parsed;
  parsed.properties = parser.parse_config_properties(configuration);
  parsed.mapping = parser.parse_trigger_mapping(mapping);
  parsed.configs = parser.parse_trigger_configs(configuration, parsed.mapping);
  return parsed;
}

// Promises

class Promises {
 public:
  void keep(bool kept, const char* promise) {
    if (!kept) {
      broken.emplace_back(promise);
    }
  }

  std::vector<std::string> broken;
};

void check_duration(const Trigger_Source& source, Promises& promises) {
  const Activity_Duration& activity = *source.activity_duration;
  const bool tracks = activity.mode == Activity_Duration_Mode::object_track;
  promises.keep(!tracks || source.type == Trigger_Source_Type::object_detection,
                "only objects are tracked");
  promises.keep(activity.min_duration >= 1s && activity.min_duration <= 8h,
                "an activity lasts 1 s to 8 h");
  const bool in_range = activity.dropout >= 1s && activity.dropout <= 10min;
  promises.keep(in_range || (tracks && activity.dropout == 0s),
                "a dropout lasts 1 s to 10 min, or a track has none");
}

void check_source(const Trigger_Source& source, Promises& promises) {
  const bool onvif = source.type == Trigger_Source_Type::onvif_metadata;
  const bool objects = source.type == Trigger_Source_Type::object_detection;
  const bool motion = source.type == Trigger_Source_Type::motion_detection;
  promises.keep(source.type != Trigger_Source_Type::external, "external sources are dropped");
  promises.keep(source.onvif_topic.has_value() == onvif, "ONVIF sources alone have topics");
  promises.keep(!onvif || !source.onvif_topic->empty(), "no topic is empty");
  promises.keep(source.search_item.has_value() == objects, "object sources alone search");
  promises.keep(!objects || !source.search_item->object_type.empty(), "no object type is empty");
  if (source.activity_duration) {
    promises.keep(objects || motion, "objects and motion alone have durations");
    check_duration(source, promises);
  }
}

void check_schedules(const Trigger_Config& config, Promises& promises) {
  promises.keep(!config.schedule_invalid || config.schedules.empty(),
                "an invalid schedule leaves none");
  for (const Trigger_Mapping_Entry& entry : config.schedules) {
    promises.keep(entry.schedule && entry.schedule->usable, "every schedule can be used");
  }
}

void check_config(const Trigger_Config& config, Promises& promises) {
  promises.keep(!config.sources.empty(), "every trigger has sources");
  for (const Trigger_Source& source : config.sources) {
    check_source(source, promises);
  }
  check_schedules(config, promises);
  promises.keep(config.matches_server == Tag_Filter::matches_any(server_tags(), config.tags.server),
                "the server filter says whether the server matches");
  const std::vector<std::string> topics = config.all_source_topics();
  promises.keep(std::set<std::string>(topics.begin(), topics.end()).size() == topics.size(),
                "no topic comes twice");
}

/// The kept triggers are triggers of the document, in its order, no id twice.
void check_order(const std::vector<Trigger_Config>& configs, const Json::Value& triggers,
                 Promises& promises) {
  std::set<std::uint64_t> ids;
  auto trigger = triggers.begin();
  for (const Trigger_Config& config : configs) {
    promises.keep(ids.insert(config.id).second, "no id comes twice");
    while (trigger != triggers.end() && (*trigger)["id"].asUInt64() != config.id) {
      ++trigger;
    }
    promises.keep(trigger != triggers.end(), "triggers keep the order of the document");
  }
}

void check_mapping(const Trigger_Mapping& mapping, const Json::Value& associations,
                   Promises& promises) {
  std::set<std::uint64_t> listed;
  for (const Json::Value& association : associations) {
    for (const Json::Value& id : association["triggerIds"]) {
      listed.insert(id.asUInt64());
    }
  }
  promises.keep(listed.size() == mapping.size(), "every listed trigger is mapped, and no other");
  for (const auto& [id, schedules] : mapping) {
    promises.keep(listed.count(id) != 0, "every mapped trigger is listed");
  }
}

std::vector<std::string> broken_promises(const Parsed& parsed, const Json::Value& configuration,
                                         const Json::Value& mapping) {
  Promises promises;
  for (const Trigger_Config& config : parsed.configs) {
    check_config(config, promises);
  }
  check_order(parsed.configs, configuration["triggers"], promises);
  check_mapping(parsed.mapping, mapping["triggerMapping"], promises);
  return promises.broken;
}

// Rejections

bool is_validation_message(const std::string& text) {
  test::Message_Tally tally;
  return tally.note(text);
}

std::string complaint_about(const Json::Value& filter) {
  try {
    Vemora_Tags_JSON_Converter::parse_search_tags(filter);
  } catch (const std::exception& error) {
    return error.what();
  }
  return "";
}

/// Whether the converter, asked about the filters of the document, says that text of one of them.
bool is_about_tags(const std::string& text, const Json::Value& configuration) {
  for (const Json::Value& trigger : configuration["triggers"]) {
    if (!trigger.isObject() || !trigger["tags"].isObject()) {
      break;  // nothing behind it was looked at
    }
    for (const char* filter : {"server", "camera", "eventSubscription"}) {
      const Json::Value& terms = trigger["tags"][filter];
      if (!terms.isNull() && complaint_about(terms) == text) {
        return true;
      }
    }
  }
  return false;
}

Judge judge_of(const Backend_Error<std::runtime_error>& error, const Json::Value& configuration) {
  if (error.error_code != 245760) {
    return Judge::unknown;
  }
  if (is_validation_message(error.what())) {
    return Judge::parser;
  }
  return is_about_tags(error.what(), configuration) ? Judge::tag_converter : Judge::unknown;
}

Judge judge_of(const Internal_Error<std::logic_error>& error) {
  const bool server_is_missing = error.error_code == -2 && is_validation_message(error.what());
  return server_is_missing ? Judge::parser : Judge::unknown;
}

/// Keys of a document are looked up before it is known to have any.
bool has_keys(const Json::Value& document) {
  return document.isObject() || document.isNull();
}

Verdict parse_values(const Json::Value& configuration, const Json::Value& mapping,
                     bool server_is_known) {
  test::Fake_Database site = a_site(server_is_known);
  Vemora_Trigger_Parser parser(test::make_fake_repository(site), server_id);
  try {
    const Parsed parsed = parse(parser, configuration, mapping);
    return {Judge::nobody, "", broken_promises(parsed, configuration, mapping)};
  } catch (const Backend_Error<std::runtime_error>& error) {
    return {judge_of(error, configuration), error.what(), {}};
  } catch (const Internal_Error<std::logic_error>& error) {
    return {judge_of(error), error.what(), {}};
  } catch (const Json::LogicError& error) {
    return {has_keys(configuration) ? Judge::unknown : Judge::json_library, error.what(), {}};
  } catch (const std::exception& error) {
    return {Judge::unknown, error.what(), {}};
  }
}

}  // namespace

Documents split_documents(std::string_view text) {
  constexpr std::string_view line = "\n---\n";
  const std::size_t end = text.find(line);
  if (end == std::string_view::npos) {
    return {std::string(text), R"({"triggerMapping": []})"};
  }
  return {std::string(text.substr(0, end)), std::string(text.substr(end + line.size()))};
}

Verdict parse_documents(const Documents& documents) {
  Json::Value configuration;
  Json::Value mapping;
  try {
    configuration = test::json(documents.configuration);
    mapping = test::json(documents.mapping);
  } catch (const std::invalid_argument& error) {
    return {Judge::json_library, error.what(), {}};
  } catch (const Json::RuntimeError& error) {  // nested too deeply
    return {Judge::json_library, error.what(), {}};
  }
  return parse_values(configuration, mapping, documents.server_is_known);
}

}  // namespace kuv::fuzz
