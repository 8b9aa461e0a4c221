// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/unknown_keys.h"

#include <fmt/format.h>

#include <string>
#include <string_view>

#include "vemora/operations/warnings/document_keys.h"
#include "vemora/operations/warnings/nearest_name.h"
#include "vemora/trigger_parser/source_types.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Json_Document;

std::string_view name_of_member(const Json::Value::const_iterator& member) {
  const char* end = nullptr;
  const char* const begin = member.memberName(&end);
  return {begin, static_cast<std::size_t>(end - begin)};
}

/// The keys that one object may have.
class Allowed_Keys {
 public:
  Allowed_Keys(const Document_Keys& keys, const Document_Keys* besides)
      : keys_(keys), besides_(besides) {}

  bool are_free() const { return keys_.are_free; }

  const Document_Keys::Member* find(std::string_view key) const {
    const Document_Keys::Member* found = keys_.find(key);
    if (found == nullptr && besides_ != nullptr) {
      found = besides_->find(key);
    }
    return found;
  }

  template <class Action>
  void for_each(Action action) const {
    for (const Document_Keys::Member& member : keys_.members) {
      action(member.key);
    }
    if (besides_ != nullptr) {
      for (const Document_Keys::Member& member : besides_->members) {
        action(member.key);
      }
    }
  }

 private:
  const Document_Keys& keys_;
  const Document_Keys* besides_;
};

/// What to do about a key: the one that was probably meant, unless it is there as well, or all that
/// there are.
std::string advice(std::string_view key, const Json::Value& object, const Allowed_Keys& allowed) {
  Nearest_Name nearest(key);
  std::string all;
  allowed.for_each([&](const std::string& known) {
    all += (all.empty() ? "" : ", ") + in_quotes(known);
    if (!object.isMember(known)) {
      nearest.offer(known);
    }
  });
  return nearest.found().empty() ? fmt::format("; known here: {}.", all)
                                 : asking_for(nearest.found());
}

class Key_Walk {
 public:
  Key_Walk(const Json_Document& document, Found_Warnings& found)
      : document_(document), found_(found) {}

  void walk(const Json::Value& value, const Document_Keys& keys, Subject subject) {
    if (value.isObject()) {
      walk_object(value, keys, subject);
    } else if (value.isArray() && keys.elements) {
      for (const Json::Value& element : value) {
        walk(element, *keys.elements, subject);
      }
    }
  }

  /// An object of the document's root, but for the list that `is_list` names.
  void walk_root(const Json::Value& root, const Document_Keys& keys, std::string_view list) {
    const Allowed_Keys allowed(keys, nullptr);
    for (auto member = root.begin(); member != root.end(); ++member) {
      if (name_of_member(member) != list) {
        walk_member(root, member, allowed, {});
      }
    }
  }

 private:
  void walk_object(const Json::Value& object, const Document_Keys& keys, Subject subject) {
    const Document_Keys* besides = nullptr;
    if (keys.depend_on_source_type) {
      const Json::Value& type = object["type"];
      const auto known = type.isString() ? types_.type_of(type.asString()) : std::nullopt;
      if (!known) {
        return;
      }
      besides = keys.by_source_type.at(static_cast<std::size_t>(*known)).get();
    }
    const Allowed_Keys allowed(keys, besides);
    for (auto member = object.begin(); member != object.end(); ++member) {
      walk_member(object, member, allowed, subject);
    }
  }

  void walk_member(const Json::Value& object, const Json::Value::const_iterator& member,
                   const Allowed_Keys& allowed, Subject subject) {
    const std::string_view key = name_of_member(member);
    const Document_Keys::Member* const known = allowed.find(key);
    if (known != nullptr) {
      walk(*member, *known->keys, subject);
    } else if (!allowed.are_free()) {
      found_.at_key(
          document_, *member, subject,
          fmt::format("Unknown key {} is ignored{}", in_quotes(key), advice(key, object, allowed)));
    }
  }

  const Json_Document& document_;
  Found_Warnings& found_;
  Source_Types types_;
};

}  // namespace

void warn_of_unknown_keys(const embedded_server::Read_Documents& documents,
                          const std::vector<Judged_Trigger>& triggers, Found_Warnings& found) {
  Key_Walk in_config(documents.config, found);
  in_config.walk_root(documents.config.value(), keys_of_configuration(), "triggers");
  const Document_Keys& keys_of_trigger = *keys_of_configuration().find("triggers")->keys->elements;
  for (const Judged_Trigger& trigger : triggers) {
    if (trigger.is_ours) {
      in_config.walk(trigger.element, keys_of_trigger, trigger.subject);
    }
  }
  const Json::Value& mapping = documents.mapping.value();
  if (!mapping.isObject()) {
    return;
  }
  Key_Walk in_mapping(documents.mapping, found);
  in_mapping.walk_root(mapping, keys_of_mapping(), "triggerMapping");
  const Json::Value& associations = mapping["triggerMapping"];
  const Document_Keys& keys_of_association =
      *keys_of_mapping().find("triggerMapping")->keys->elements;
  if (associations.isArray()) {
    std::size_t index = 0;
    for (const Json::Value& association : associations) {
      in_mapping.walk(association, keys_of_association, {index++});
    }
  }
}

}  // namespace kuv::vemora::operations
