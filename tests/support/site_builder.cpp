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

template <class Record>
Record& given(std::map<std::uint64_t, Record>& records, std::uint64_t id) {
  Record& record = records[id];
  record.id = id;
  return record;
}

std::string capabilities_of(const Site_Camera& camera) {
  if (camera.capabilities) {
    return *camera.capabilities;
  }
  return camera.topics.empty() ? "" : capabilities_with_topics(camera.topics);
}

}  // namespace

Site_Camera& Site_Camera::named(std::string text) {
  name = std::move(text);
  return *this;
}

Site_Camera& Site_Camera::with_tag(const std::string& tag, std::optional<std::string> value) {
  tags[tag].value = std::move(value);
  return *this;
}

Site_Camera& Site_Camera::without_tag(const std::string& tag) {
  tags.erase(tag);
  return *this;
}

Site_Camera& Site_Camera::with_topic(const std::string& topic) {
  topics.insert(topic);
  return *this;
}

Site_Camera& Site_Camera::without_topic(const std::string& topic) {
  topics.erase(topic);
  return *this;
}

Site_Camera& Site_Camera::with_capabilities(std::string json) {
  capabilities = std::move(json);
  return *this;
}

Site_Camera& Site_Camera::detecting_objects(bool does) {
  object_detection = does;
  return *this;
}

Site_Camera& Site_Camera::detecting_motion(bool does) {
  motion_detection = does;
  return *this;
}

Site_Subscription& Site_Subscription::named(std::string text) {
  name = std::move(text);
  return *this;
}

Site_Subscription& Site_Subscription::with_tag(const std::string& tag,
                                               std::optional<std::string> value) {
  tags[tag].value = std::move(value);
  return *this;
}

Site_Subscription& Site_Subscription::without_tag(const std::string& tag) {
  tags.erase(tag);
  return *this;
}

Site_Subscription& Site_Subscription::in_category(std::uint64_t id) {
  category_id = id;
  return *this;
}

Site_Subscription& Site_Subscription::on_camera(std::uint64_t id) {
  camera_ids.insert(id);
  return *this;
}

server& Site_Builder::given_server(std::uint64_t id) {
  return given(servers_, id);
}

schedule& Site_Builder::given_schedule(std::uint64_t id, bool usable) {
  schedule& record = given(schedules_, id);
  record.usable = usable;
  return record;
}

metadata_event_category& Site_Builder::given_category(std::uint64_t id, std::string name) {
  metadata_event_category& record = given(categories_, id);
  record.name = std::move(name);
  return record;
}

void Site_Builder::given_object_type(const std::string& name, std::set<std::string> types) {
  object_types_[name] = std::move(types);
}

embedded_server::Inventory Site_Builder::inventory() const {
  embedded_server::Inventory inventory;
  for (const auto& [id, record] : servers_) {
    inventory.servers.push_back(record);
  }
  for (const auto& [id, record] : cameras_) {
    inventory.cameras.push_back({id, record.name, record.tags, record.object_detection,
                                 record.motion_detection, capabilities_of(record)});
  }
  for (const auto& [id, record] : schedules_) {
    inventory.schedules.push_back(record);
  }
  for (const auto& [id, record] : categories_) {
    inventory.categories.push_back(record);
  }
  for (const auto& [id, record] : subscriptions_) {
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
