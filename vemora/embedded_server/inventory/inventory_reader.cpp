// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/inventory/inventory_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "vemora/embedded_server/documents/foreign_texts.h"
#include "vemora/embedded_server/documents/json_text.h"
#include "vemora/embedded_server/inventory/object_types.h"
#include "vemora/embedded_server/texts/characters.h"

namespace kuv::vemora::embedded_server {
namespace {

/// True for an integer. 7.0 is not an id, although its value is one.
bool is_id(const Json::Value& value) {
  return value.type() != Json::realValue && value.isUInt64();
}

std::string_view text_of(const Json::Value& value) {
  const char* begin = nullptr;
  const char* end = nullptr;
  value.getString(&begin, &end);
  return {begin, static_cast<std::size_t>(end - begin)};
}

std::string_view key_of(const Json::Value::const_iterator& member) {
  const char* end = nullptr;
  const char* const begin = member.memberName(&end);
  return {begin, static_cast<std::size_t>(end - begin)};
}

/// A name for use in messages, where a long one would be repeated by every fault that names it.
std::string shortened(const std::string& name) {
  constexpr std::size_t most_characters = 200;
  const std::string_view beginning = first_characters(name, most_characters);
  return std::string(beginning) + (beginning.size() < name.size() ? "..." : "");
}

/// The texts of a document that will be stored.
class Texts_To_Store {
 public:
  void add(const Json::Value& text) {
    texts_.push_back(text_of(text));
    origins_.push_back({&text, false});
  }

  void add_key(const Json::Value::const_iterator& member) {
    texts_.push_back(key_of(member));
    origins_.push_back({&*member, true});
  }

  /// One fault for each text that the database cannot store.
  std::vector<Document_Fault> faults(const std::shared_ptr<Database>& database,
                                     const Json_Document& document) const {
    std::vector<Document_Fault> found;
    for (const Unstorable_Text& text : unstorable_texts(database, texts_)) {
      const Origin& origin = origins_[text.place];
      found.push_back({objection_to(text, document), origin.is_key
                                                         ? document.locate_key(*origin.value)
                                                         : document.locate(*origin.value)});
    }
    return found;
  }

 private:
  std::string objection_to(const Unstorable_Text& text, const Json_Document& document) const {
    const bool is_foreign = !is_utf8(texts_[text.place]);
    return fmt::format("This database cannot store the text: {}{}{}.", text.why,
                       is_foreign ? "; " : "",
                       is_foreign ? how_to_mend_foreign_texts(document) : "");
  }

  struct Origin {
    const Json::Value* value;
    bool is_key;  ///< the text is the key of the value
  };

  std::vector<std::string_view> texts_;
  std::vector<Origin> origins_;
};

/// Reads one document and collects its faults.
class Inventory_Reader {
 public:
  Inventory_Reader(const Json_Document& document, const Inventory_References& stored)
      : document_(document), stored_(stored) {}

  Read_Inventory read(const std::shared_ptr<Database>& database) {
    const Json::Value& root = document_.value();
    if (!root.isObject()) {
      fault(root, "An inventory must be a JSON object.");
      return std::move(result_);
    }
    require_known_keys(root, {"servers", "cameras", "schedules", "eventCategories", "subscriptions",
                              "objectTypes"});
    // Records come before those that refer to them.
    read_records(root, "servers", [this](const Json::Value& record) { read_server(record); });
    read_records(root, "cameras", [this](const Json::Value& record) { read_camera(record); });
    read_records(root, "schedules", [this](const Json::Value& record) { read_schedule(record); });
    read_records(root, "eventCategories",
                 [this](const Json::Value& record) { read_category(record); });
    read_records(root, "subscriptions",
                 [this](const Json::Value& record) { read_subscription(record); });
    read_object_types(root);
    if (database) {
      report_unstorable_texts(database);
    }
    std::stable_sort(result_.faults.begin(), result_.faults.end(), is_before);
    warn_of_foreign_texts();
    return std::move(result_);
  }

 private:
  static bool is_before(const Document_Fault& one, const Document_Fault& other) {
    return std::tie(one.location.line, one.location.column) <
           std::tie(other.location.line, other.location.column);
  }

  /// To be called when the faults are sorted.
  void warn_of_foreign_texts() {
    Text_Position last;
    for (Foreign_Text& text : foreign_texts(document_)) {
      Document_Fault found{std::move(text.message), document_.locate_offset(text.offset, last)};
      if (!std::binary_search(result_.faults.begin(), result_.faults.end(), found, is_before)) {
        result_.warnings.push_back(
            {"not-utf8", {"inventory", std::move(found), std::nullopt, std::nullopt}});
      }
    }
  }

  void fault(const Json::Value& value, std::string message) {
    result_.faults.push_back({std::move(message), document_.locate(value)});
  }

  void report_unstorable_texts(const std::shared_ptr<Database>& database) {
    const std::vector<Document_Fault> found = texts_.faults(database, document_);
    result_.faults.insert(result_.faults.end(), found.begin(), found.end());
  }

  void require_known_keys(const Json::Value& object,
                          std::initializer_list<std::string_view> known) {
    for (auto member = object.begin(); member != object.end(); ++member) {
      if (std::find(known.begin(), known.end(), member.name()) == known.end()) {
        result_.faults.push_back(
            {fmt::format("Unknown key \"{}\".", member.name()), document_.locate_key(*member)});
      }
    }
  }

  /// An optional member. Null if it is missing, and also if it is not of that kind, which is a
  /// fault.
  const Json::Value* find_member(const Json::Value& object, const char* key,
                                 bool (Json::Value::*is_kind)() const, const char* kind) {
    if (!object.isMember(key)) {
      return nullptr;
    }
    const Json::Value& member = object[key];
    if (!(member.*is_kind)()) {
      fault(member, fmt::format("\"{}\" must be {}.", key, kind));
      return nullptr;
    }
    return &member;
  }

  template <class Read>
  void read_records(const Json::Value& root, const char* key, Read read) {
    const char* const kind = "an array of JSON objects";
    const Json::Value* const records = find_member(root, key, &Json::Value::isArray, kind);
    if (records == nullptr) {
      return;
    }
    seen_ids_.clear();
    for (const Json::Value& record : *records) {
      if (record.isObject()) {
        read(record);
      } else {
        fault(record, fmt::format("\"{}\" must be {}.", key, kind));
      }
    }
  }

  std::uint64_t read_id(const Json::Value& record) {
    const Json::Value& id = record["id"];
    if (!is_id(id)) {
      fault(record.isMember("id") ? id : record, "\"id\" must be an unsigned 64-bit integer.");
      return 0;
    }
    const auto [first, is_new] = seen_ids_.emplace(id.asUInt64(), &id);
    if (!is_new) {
      const Location place = document_.locate(*first->second);
      fault(id, fmt::format("The id {} is given twice, first in line {}, column {}.", id.asUInt64(),
                            place.line, place.column));
    }
    return id.asUInt64();
  }

  std::string read_name(const Json::Value& record) {
    const Json::Value* const name = find_member(record, "name", &Json::Value::isString, "a string");
    if (name == nullptr) {
      return {};
    }
    texts_.add(*name);
    return name->asString();
  }

  bool read_flag(const Json::Value& record, const char* key, bool fallback) {
    const Json::Value* const flag = find_member(record, key, &Json::Value::isBool, "true or false");
    return flag == nullptr ? fallback : flag->asBool();
  }

  const Json::Value* find_object(const Json::Value& record, const char* key) {
    return find_member(record, key, &Json::Value::isObject, "a JSON object");
  }

  Tag_Map read_tags(const Json::Value& record) {
    Tag_Map tags;
    const Json::Value* const given = find_object(record, "tags");
    if (given == nullptr) {
      return tags;
    }
    for (auto tag = given->begin(); tag != given->end(); ++tag) {
      texts_.add_key(tag);
      if (tag->isString()) {
        texts_.add(*tag);
        tags[tag.name()].value = tag->asString();
      } else if (tag->isNull()) {
        tags[tag.name()].value = std::nullopt;
      } else {
        fault(*tag, fmt::format("Tag \"{}\" must be a string or null.", tag.name()));
      }
    }
    return tags;
  }

  void read_server(const Json::Value& given) {
    require_known_keys(given, {"id", "name", "tags"});
    server record;
    record.id = read_id(given);
    record.name = read_name(given);
    record.tags = read_tags(given);
    result_.inventory.servers.push_back(std::move(record));
  }

  void read_camera(const Json::Value& given) {
    require_known_keys(
        given, {"id", "name", "tags", "objectDetection", "motionDetection", "capabilities"});
    Inventory::Camera record;
    record.id = read_id(given);
    record.name = read_name(given);
    record.tags = read_tags(given);
    record.object_detection = read_flag(given, "objectDetection", false);
    record.motion_detection = read_flag(given, "motionDetection", false);
    record.capabilities = read_capabilities(given);
    camera_ids_.insert(record.id);
    result_.inventory.cameras.push_back(std::move(record));
  }

  std::string read_capabilities(const Json::Value& record) {
    const Json::Value* const capabilities = find_object(record, "capabilities");
    if (capabilities == nullptr) {
      return {};
    }
    require_utf8(*capabilities);
    return json_text(*capabilities, Json_Encoding::utf8);
  }

  /// Capabilities are stored as JSON. There, control characters are escaped, but bytes that are not
  /// UTF-8 would stay as they are and could not be read back.
  void require_utf8(const Json::Value& part) {
    if (part.isString() && !is_utf8(text_of(part))) {
      fault(part, not_utf8_capabilities());
    }
    for (auto member = part.begin(); member != part.end(); ++member) {
      if (part.isObject() && !is_utf8(key_of(member))) {
        result_.faults.push_back({not_utf8_capabilities(), document_.locate_key(*member)});
      }
      require_utf8(*member);
    }
  }

  std::string not_utf8_capabilities() const {
    return fmt::format("\"capabilities\" must be UTF-8; {}.", how_to_mend_foreign_texts(document_));
  }

  void read_schedule(const Json::Value& given) {
    require_known_keys(given, {"id", "name", "usable"});
    schedule record;
    record.id = read_id(given);
    record.name = read_name(given);
    record.usable = read_flag(given, "usable", true);
    result_.inventory.schedules.push_back(std::move(record));
  }

  void read_category(const Json::Value& given) {
    require_known_keys(given, {"id", "name"});
    metadata_event_category record;
    record.id = read_id(given);
    record.name = read_name(given);
    category_ids_.insert(record.id);
    result_.inventory.categories.push_back(std::move(record));
  }

  void read_subscription(const Json::Value& given) {
    require_known_keys(given, {"id", "name", "categoryId", "tags", "cameraIds"});
    Inventory::Subscription record;
    record.id = read_id(given);
    if (stored_.topic_subscription_ids.count(record.id) != 0) {
      fault(given["id"], fmt::format("The id {} is that of a topic subscription.", record.id));
    }
    record.name = read_name(given);
    record.category_id = read_category_id(given["categoryId"]);
    record.tags = read_tags(given);
    record.camera_ids = read_camera_ids(given);
    result_.inventory.subscriptions.push_back(std::move(record));
  }

  std::optional<std::uint64_t> read_category_id(const Json::Value& id) {
    if (id.isNull()) {
      return std::nullopt;
    }
    if (!is_id(id)) {
      fault(id, "\"categoryId\" must be an unsigned 64-bit integer.");
      return std::nullopt;
    }
    if (category_ids_.count(id.asUInt64()) + stored_.category_ids.count(id.asUInt64()) == 0) {
      fault(id, fmt::format("There is no event category {}.", id.asUInt64()));
    }
    return id.asUInt64();
  }

  std::set<std::uint64_t> read_camera_ids(const Json::Value& record) {
    std::set<std::uint64_t> ids;
    const char* const kind = "an array of unsigned 64-bit integers";
    const Json::Value* const given = find_member(record, "cameraIds", &Json::Value::isArray, kind);
    if (given == nullptr) {
      return ids;
    }
    for (const Json::Value& id : *given) {
      if (!is_id(id)) {
        fault(id, fmt::format("\"cameraIds\" must be {}.", kind));
      } else if (camera_ids_.count(id.asUInt64()) + stored_.camera_ids.count(id.asUInt64()) == 0) {
        fault(id, fmt::format("There is no camera {}.", id.asUInt64()));
      } else {
        ids.insert(id.asUInt64());
      }
    }
    return ids;
  }

  void read_object_types(const Json::Value& root) {
    const Json::Value* const types = find_object(root, "objectTypes");
    if (types == nullptr) {
      return;
    }
    const Json::Value& given = *types;
    auto known = stored_.object_types;
    for (auto type = given.begin(); type != given.end(); ++type) {
      texts_.add_key(type);
      const std::set<std::string> stands_for = read_object_type(type.name(), *type);
      known[type.name()] = stands_for;
      result_.inventory.object_types[type.name()] = stands_for;
    }
    report_excessive_types(given, known);
    for (const std::vector<std::string>& cycle : find_cycles(known)) {
      const auto given_name =
          std::find_if(cycle.begin(), cycle.end(),
                       [&given](const std::string& name) { return given.isMember(name); });
      fault(given_name == cycle.end() ? given : given[*given_name],
            fmt::format("Object type \"{}\" stands for itself: \"{}\".", cycle.front(),
                        fmt::join(cycle, "\" > \"")));
    }
  }

  void report_excessive_types(const Json::Value& given,
                              const std::map<std::string, std::set<std::string>>& known) {
    const Excessive_Types excessive = find_excessive_types(known);
    if (excessive.too_many_general) {
      fault(given,
            fmt::format("There are more than {} general object types.", most_general_object_types));
    }
    for (const std::string& name : excessive.names) {
      fault(given.isMember(name) ? given[name] : given,
            fmt::format("Object type \"{}\" stands for more than {} types.", shortened(name),
                        most_types_of_a_general_one));
    }
  }

  std::set<std::string> read_object_type(const std::string& name, const Json::Value& given) {
    std::set<std::string> types;
    if (!given.isArray() || given.empty()) {
      fault(given, fmt::format("Object type \"{}\" must be a non-empty array of strings.",
                               shortened(name)));
      return types;
    }
    for (const Json::Value& type : given) {
      if (!type.isString() || type.asString().empty()) {
        fault(type, fmt::format("Object type \"{}\" must be a non-empty array of strings.",
                                shortened(name)));
      } else {
        texts_.add(type);
        types.insert(type.asString());
      }
    }
    return types;
  }

  const Json_Document& document_;
  const Inventory_References& stored_;
  Read_Inventory result_;
  Texts_To_Store texts_;
  /// The ids of the kind of record that is being read, where they are given first.
  std::map<std::uint64_t, const Json::Value*> seen_ids_;
  std::set<std::uint64_t> camera_ids_;
  std::set<std::uint64_t> category_ids_;
};

}  // namespace

Read_Inventory read_inventory(const Json_Document& document, const Inventory_References& stored,
                              const std::shared_ptr<Database>& database) {
  return Inventory_Reader(document, stored).read(database);
}

}  // namespace kuv::vemora::embedded_server
