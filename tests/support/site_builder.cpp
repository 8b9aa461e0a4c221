// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "support/site_builder.h"

#include <fmt/format.h>

namespace kuv::test {
namespace {

/// A text between quotes, every character of it kept.
std::string in_quotes(const std::string& text) {
  std::string json = "\"";
  for (const char letter : text) {
    if (letter == '"' || letter == '\\') {
      json += '\\';
      json += letter;
    } else if (static_cast<unsigned char>(letter) < ' ') {
      json += fmt::format("\\u{:04x}", static_cast<int>(letter));
    } else {
      json += letter;
    }
  }
  return json + '"';
}

std::string capabilities_of(const Site_Camera& camera) {
  if (camera.capabilities) {
    return *camera.capabilities;
  }
  return camera.topics.empty() ? "" : capabilities_with_topics(camera.topics);
}

}  // namespace

void Site_Builder::given_object_type(const std::string& name, std::set<std::string> types) {
  object_types_[name] = std::move(types);
}

embedded_server::Inventory Site_Builder::inventory() const {
  embedded_server::Inventory inventory;
  for (const auto& [id, record] : servers()) {
    inventory.servers.push_back(record);
  }
  for (const auto& [id, record] : cameras()) {
    inventory.cameras.push_back({id, record.name, record.tags, record.object_detection,
                                 record.motion_detection, capabilities_of(record)});
  }
  for (const auto& [id, record] : schedules()) {
    inventory.schedules.push_back(record);
  }
  for (const auto& [id, record] : categories()) {
    inventory.categories.push_back(record);
  }
  for (const auto& [id, record] : subscriptions()) {
    inventory.subscriptions.push_back(
        {id, record.name, record.category_id, record.tags, record.camera_ids});
  }
  inventory.object_types = object_types_;
  return inventory;
}

void Site_Builder::store_in(const std::shared_ptr<embedded_server::Database>& database) const {
  embedded_server::store_inventory(database, inventory());
}

std::string capabilities_with_topics(const std::set<std::string>& topics) {
  std::string list;
  for (const std::string& topic : topics) {
    list += (list.empty() ? "" : ", ") + in_quotes(topic) + ": \"\"";
  }
  return R"({"Metadata": {"Mode": {"capabilities": {"On": {"TopicFilter": {"capabilities": {)" +
         list + "}}}}}}}";
}

}  // namespace kuv::test
