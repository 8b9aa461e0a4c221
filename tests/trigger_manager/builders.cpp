// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_manager/builders.h"

namespace kuv::test {

Subscription_Record a_generic_subscription(std::uint64_t id,
                                           std::initializer_list<Trigger_Record> held) {
  auto record = std::make_shared<metadata_event_subscription>();
  record->id = id;
  record->trigger_links.assign(held.begin(), held.end());
  return record;
}

Subscription_Record a_topic_subscription(std::uint64_t id, odb::lazy_shared_ptr<camera> link,
                                         std::optional<std::string> topic,
                                         std::initializer_list<Trigger_Record> held) {
  auto record = a_generic_subscription(id, held);
  record->camera = std::move(link);
  record->onvif_topic = std::move(topic);
  return record;
}

ETA_Record an_eta_camera(std::uint64_t id, odb::lazy_shared_ptr<camera> link,
                         std::initializer_list<Trigger_Record> held) {
  auto record = std::make_shared<eta_camera>();
  record->id = id;
  record->camera = std::move(link);
  record->triggers.insert(held.begin(), held.end());
  return record;
}

}  // namespace kuv::test
