// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "vemora/embedded_server/host/services.h"
#include "vemora/operations/match/event.h"
#include "vemora/operations/match/listeners.h"
#include "vemora/operations/site/site_records.h"

namespace kuv::test {

using namespace kuv::vemora;
using namespace kuv::vemora::operations;

inline Event topic(std::uint64_t camera_id, const std::string& name) {
  return {Event::Kind::topic, camera_id, name, false};
}

inline Event object(std::uint64_t camera_id, const std::string& type, bool in_motion = false) {
  return {Event::Kind::object, camera_id, type, in_motion};
}

inline Event motion(std::uint64_t camera_id) {
  return {Event::Kind::motion, camera_id, {}, false};
}

inline Event of_subscription(std::uint64_t id) {
  return {Event::Kind::subscription, id, {}, false};
}

/// The records of a site that a test writes down, without a database.
class Records_Of_Listeners {
 protected:
  Records_Of_Listeners() { resolver.learn({{"vehicle", {"car", "truck"}}}); }

  static Trigger_Source searching(const std::string& type, bool motion_required = false) {
    Trigger_Source source;
    source.type = Trigger_Source_Type::object_detection;
    source.search_item = Object_Search_Item{type, motion_required};
    return source;
  }

  static Trigger_Source watching_motion() {
    Trigger_Source source;
    source.type = Trigger_Source_Type::motion_detection;
    return source;
  }

  void given_trigger(std::uint64_t id, std::initializer_list<Trigger_Source> sources) {
    trigger& record = records.triggers[id];
    record.id = id;
    record.sources = sources;
  }

  Site_Records records;
  embedded_server::Inventory_Meta_Type_Resolver resolver;
};

}  // namespace kuv::test
