// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/document_keys.h"

#include <json/reader.h>
#include <json/value.h>

#include <algorithm>
#include <cstring>
#include <regex>
#include <stdexcept>

#include "document_schema.h"

namespace kuv::vemora::operations {
namespace {

constexpr const char* reference_prefix = "#/$defs/";

/// Reads the keys of values out of a schema. It understands what our schemas use.
class Schema {
 public:
  explicit Schema(const char* text) : root_(parse(text)) {}

  std::unique_ptr<Document_Keys> keys() const {
    auto keys = std::make_unique<Document_Keys>();
    add(root_, *keys);
    return keys;
  }

 private:
  static Json::Value parse(const char* text) {
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    Json::Value value;
    std::string faults;
    if (!reader->parse(text, text + std::strlen(text), &value, &faults)) {
      throw std::logic_error("a schema of the documents is damaged: " + faults);
    }
    return value;
  }

  /// What this schema, or this part of one, allows besides.
  void add(const Json::Value& part, Document_Keys& keys) const {
    if (part.isMember("$ref")) {
      const std::string name = part["$ref"].asString();
      add(root_["$defs"][name.substr(std::strlen(reference_prefix))], keys);
    }
    add_members(part["properties"], keys);
    keys.are_free = keys.are_free || part["additionalProperties"].isObject();
    if (part.isMember("items")) {
      keys.elements = made_of(part["items"]);
    }
    for (const char* const all : {"allOf", "anyOf"}) {
      for (const Json::Value& inner : part[all]) {
        add(inner, keys);
      }
    }
    if (part.isMember("if")) {
      add_condition(part, keys);
    }
  }

  std::unique_ptr<Document_Keys> made_of(const Json::Value& part) const {
    auto keys = std::make_unique<Document_Keys>();
    add(part, *keys);
    return keys;
  }

  void add_members(const Json::Value& properties, Document_Keys& keys) const {
    for (auto property = properties.begin(); property != properties.end(); ++property) {
      if (keys.find(property.name()) == nullptr) {
        keys.members.push_back({property.name(), made_of(*property)});
      }
    }
  }

  /// The types of sources are told apart; other conditions are about values, not about keys.
  void add_condition(const Json::Value& part, Document_Keys& keys) const {
    const Json::Value& pattern = part["if"]["properties"]["type"]["pattern"];
    if (!pattern.isString()) {
      add(part["then"], keys);
      add(part["else"], keys);
      return;
    }
    keys.depend_on_source_type = true;
    const std::regex wanted(pattern.asString());
    for (std::size_t type = 0; type < source_type_names.size(); ++type) {
      const std::string name(source_type_names[type]);
      add_of_source_type(part[std::regex_match(name, wanted) ? "then" : "else"], type, keys);
    }
  }

  void add_of_source_type(const Json::Value& part, std::size_t type, Document_Keys& keys) const {
    std::unique_ptr<Document_Keys>& found = keys.by_source_type.at(type);
    if (!found) {
      found = std::make_unique<Document_Keys>();
    }
    add(part, *found);
  }

  Json::Value root_;
};

}  // namespace

const Document_Keys::Member* Document_Keys::find(std::string_view key) const {
  const auto found = std::find_if(members.begin(), members.end(),
                                  [key](const Member& member) { return member.key == key; });
  return found == members.end() ? nullptr : &*found;
}

const Document_Keys& keys_of_configuration() {
  static const std::unique_ptr<Document_Keys> keys = Schema(document_schemas[0]).keys();
  return *keys;
}

const Document_Keys& keys_of_mapping() {
  static const std::unique_ptr<Document_Keys> keys = Schema(document_schemas[1]).keys();
  return *keys;
}

}  // namespace kuv::vemora::operations
