// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/history/document_difference.h"

#include <map>
#include <utility>

#include "vemora/embedded_server/host/stored_document.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Json_Document;

const Json::Value& list_in(const Json::Value& document, const char* key) {
  const Json::Value& list = document[key];
  return list.isArray() ? list : Json::Value::nullSingleton();
}

using Numbered_Triggers = std::map<std::uint64_t, const Json::Value*>;

/// Accepted documents give each trigger an id of its own.
Numbered_Triggers triggers_in(const Json::Value& config) {
  Numbered_Triggers triggers;
  for (const Json::Value& element : list_in(config, "triggers")) {
    if (element.isObject() && element["id"].isUInt64()) {
      triggers.emplace(element["id"].asUInt64(), &element);
    }
  }
  return triggers;
}

std::shared_ptr<const Json_Document> read(const std::string& text, const char* name) {
  return std::make_shared<const Json_Document>(embedded_server::read_stored_document(text, name));
}

void compare_triggers(const Numbered_Triggers& before, const Numbered_Triggers& after,
                      std::vector<Different_Trigger>& different) {
  std::map<std::uint64_t, std::pair<const Json::Value*, const Json::Value*>> pairs;
  for (const auto& [id, value] : before) {
    pairs[id].first = value;
  }
  for (const auto& [id, value] : after) {
    pairs[id].second = value;
  }
  for (const auto& [id, pair] : pairs) {
    Different_Trigger found{id, pair.first, pair.second, {}};
    if (found.before != nullptr && found.after != nullptr) {
      append_changed_fields(*found.before, *found.after, "id", found.fields);
      if (found.fields.empty()) {
        continue;
      }
    }
    different.push_back(std::move(found));
  }
}

}  // namespace

bool Document_Difference::is_empty() const {
  return triggers.empty() && settings.empty() && associations.removed.empty() &&
         associations.added.empty() && mapping_settings.empty();
}

bool Document_Difference::has_same_texts() const {
  return config_before->text() == config_after->text() &&
         mapping_before->text() == mapping_after->text();
}

Document_Difference difference_of_documents(const Document_Texts& before,
                                            const Document_Texts& after) {
  Document_Difference found;
  found.config_before = read(before.config, "configuration");
  found.config_after = read(after.config, "configuration");
  found.mapping_before = read(before.mapping, "mapping");
  found.mapping_after = read(after.mapping, "mapping");
  const Json::Value& old_config = found.config_before->value();
  const Json::Value& new_config = found.config_after->value();
  compare_triggers(triggers_in(old_config), triggers_in(new_config), found.triggers);
  append_changed_fields(old_config, new_config, "triggers", found.settings);
  const Json::Value& old_mapping = found.mapping_before->value();
  const Json::Value& new_mapping = found.mapping_after->value();
  found.associations = difference_of_lists(list_in(old_mapping, "triggerMapping"),
                                           list_in(new_mapping, "triggerMapping"));
  append_changed_fields(old_mapping, new_mapping, "triggerMapping", found.mapping_settings);
  return found;
}

}  // namespace kuv::vemora::operations
