// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/site/site_records.h"

#include "vemora/embedded_server/persistent/site_reader.h"

namespace kuv::vemora::operations {
namespace {

template <class Lists, class Key>
bool is_held(const Lists& lists, const Key& key, std::uint64_t trigger_id) {
  const auto list = lists.find(key);
  return list != lists.end() && holds(list->second, trigger_id);
}

}  // namespace

Site_Records read_site_records(const std::shared_ptr<embedded_server::Database>& database) {
  Site_Records records;
  for (const auto& record : embedded_server::read_triggers(database)) {
    records.triggers.emplace_hint(records.triggers.end(), record->id, *record);
  }
  for (const auto& record : embedded_server::read_subscriptions(database)) {
    if (!record->camera) {
      records.generic[record->id] = record->trigger_ids();
    } else if (record->onvif_topic) {
      records.topics[record->camera_id()][*record->onvif_topic] = record->trigger_ids();
    }
  }
  for (const auto& record : embedded_server::read_eta_cameras(database)) {
    Site_Records::Ids& ids = records.detection[record->camera_id()];
    for (const auto& held : record->triggers) {
      ids.push_back(held->id);
    }
  }
  return records;
}

bool is_subscribed(const Site_Records& records, std::uint64_t trigger_id, std::uint64_t camera_id,
                   const std::string& topic) {
  const auto topics = records.topics.find(camera_id);
  return topics != records.topics.end() && is_held(topics->second, topic, trigger_id);
}

bool is_joined(const Site_Records& records, std::uint64_t trigger_id,
               std::uint64_t subscription_id) {
  return is_held(records.generic, subscription_id, trigger_id);
}

bool is_detected(const Site_Records& records, std::uint64_t trigger_id, std::uint64_t camera_id) {
  return is_held(records.detection, camera_id, trigger_id);
}

}  // namespace kuv::vemora::operations
