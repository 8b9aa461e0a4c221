// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "system/passes/random_site.h"

#include "embedded_server/persistent/database_test.h"

namespace kuv::test {
namespace {

const std::vector<std::uint64_t> subscription_ids{1, 2, 100, largest_id};
const std::vector<std::uint64_t> schedule_ids{1, 2, largest_id};
const std::vector<std::string> topics{"a", "a.b", "tns1:Device/Trigger/DigitalInput"};
const std::vector<std::string> tag_names{"door", "site"};
const std::vector<std::string> tag_values{"north", "south"};
const std::vector<std::string> object_types{"car", "person", "vehicle", "anything"};

}  // namespace

const std::vector<std::uint64_t> Random_Site::camera_ids{0, 10, 11, first_unsigned_id, largest_id};
const std::vector<std::uint64_t> Random_Site::trigger_ids{0,         3, 7, 8, first_unsigned_id,
                                                          largest_id};

Random_Site::Random_Site(Site_Builder& site, std::uint64_t server_id, std::uint64_t seed)
    : Random_Draws(seed), site_(site), server_id_(server_id) {
  describe();
}

std::optional<std::string> Random_Site::some_value() {
  return one_in(3) ? std::nullopt : std::make_optional(any_of(tag_values));
}

Tag_Filter_Spec Random_Site::some_filter() {
  Tag_Filter_Spec filter;
  for (std::size_t count = pick(3); count > 0; --count) {
    filter.insert({any_of(tag_names), some_value()});
  }
  return filter;
}

Tag_Map Random_Site::some_tags() {
  Tag_Map tags;
  for (const std::string& name : some_of(tag_names, 2)) {
    tags[name].value = some_value();
  }
  return tags;
}

void Random_Site::describe_camera(Site_Camera& camera) {
  camera.tags = some_tags();
  camera.topics = some_of(topics, 2);
  camera.detecting_objects(one_in(2)).detecting_motion(one_in(2));
}

void Random_Site::describe() {
  site_.given_server(server_id_).tags = some_tags();
  for (const std::uint64_t id : camera_ids) {
    describe_camera(site_.given_camera(id));
  }
  for (const std::uint64_t id : subscription_ids) {
    site_.given_generic_subscription(id).tags = some_tags();
  }
  for (const std::uint64_t id : schedule_ids) {
    site_.given_schedule(id, !one_in(4)).name = "schedule";
  }
}

void Random_Site::change() {
  describe_camera(site_.given_camera(any_of(camera_ids)));
  site_.given_generic_subscription(any_of(subscription_ids)).tags = some_tags();
  site_.given_schedule(any_of(schedule_ids), !one_in(4));
  if (one_in(3)) {
    site_.given_server(server_id_).tags = some_tags();
  }
}

/// Mostly of schedules that there are.
std::set<std::uint64_t> Random_Site::some_schedules() {
  std::set<std::uint64_t> ids = some_of(schedule_ids, 4);
  if (one_in(12)) {
    ids.insert(4711);
  }
  return ids;
}

Trigger_Spec Random_Site::some_trigger(std::uint64_t id) {
  Trigger_Spec trigger;
  trigger.id = id;
  trigger.name = one_in(2) ? "one" : "another";
  if (one_in(3)) {
    trigger.server_filter = some_filter();
  }
  trigger.camera_filter = some_filter();
  trigger.event_filter = some_filter();
  trigger.topics = one_in(3) ? std::set<std::string>() : some_of(topics, 2);
  for (const std::string& type : some_of(object_types, 4)) {
    trigger.object_types[type] = one_in(2);
  }
  trigger.generic_events = one_in(2);
  trigger.motion = one_in(3);
  trigger.audio = one_in(5);
  trigger.external = one_in(5);
  if (trigger.topics.empty() && trigger.object_types.empty()) {
    trigger.external = true;  // a trigger has sources, be they none of ours
  }
  trigger.any_time = one_in(4);
  if (one_in(2)) {
    trigger.schedule_ids = some_schedules();
  }
  return trigger;
}

std::vector<Trigger_Spec> Random_Site::some_triggers() {
  std::vector<Trigger_Spec> triggers;
  for (const std::uint64_t id : some_of(trigger_ids, 2)) {
    triggers.push_back(some_trigger(id));
  }
  for (std::size_t place = 1; place < triggers.size(); ++place) {
    std::swap(triggers[place], triggers[pick(place + 1)]);
  }
  return triggers;
}

std::vector<Mapping_Spec> Random_Site::some_mapping() {
  std::vector<Mapping_Spec> mapping;
  for (std::size_t count = pick(3); count > 0; --count) {
    Mapping_Spec entry{some_schedules(), some_of(trigger_ids, 3)};
    entry.trigger_ids.insert(any_of(trigger_ids));
    mapping.push_back(entry);
  }
  return mapping;
}

}  // namespace kuv::test
