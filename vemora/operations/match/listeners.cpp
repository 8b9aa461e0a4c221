// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/match/listeners.h"

#include <algorithm>
#include <iterator>

#include "vemora/trigger_manager/search_items.h"

namespace kuv::vemora::operations {
namespace {

template <class Lists, class Key>
Listeners::Ids held_at(const Lists& lists, const Key& key) {
  const auto list = lists.find(key);
  return list == lists.end() ? Listeners::Ids() : list->second;
}

bool watches_motion(const trigger& record) {
  return std::any_of(record.sources.begin(), record.sources.end(), [](const auto& source) {
    return source.type == Trigger_Source_Type::motion_detection;
  });
}

}  // namespace

Listeners::Listeners(const Site_Records& records, Meta_Type_Resolver& resolver)
    : records_(records) {
  for (const auto& [id, record] : records.triggers) {
    for (const auto& [type, motion_required] :
         expand_search_items(search_items(record), resolver)) {
      auto& [still, in_motion] = searching_[type];
      in_motion.push_back(id);
      if (!motion_required) {
        still.push_back(id);
      }
    }
    if (watches_motion(record)) {
      watching_motion_.push_back(id);
    }
  }
}

Listeners::Ids Listeners::told_of(const Event& event) const {
  switch (event.kind) {
    case Event::Kind::topic: {
      const auto topics = records_.topics.find(event.place);
      return topics == records_.topics.end() ? Listeners::Ids()
                                             : held_at(topics->second, event.text);
    }
    case Event::Kind::object: {
      const auto searching = searching_.find(event.text);
      return searching == searching_.end()
                 ? Listeners::Ids()
                 : detecting(event.place, searching->second.at(event.in_motion ? 1 : 0));
    }
    case Event::Kind::motion:
      return detecting(event.place, watching_motion_);
    case Event::Kind::subscription:
      return held_at(records_.generic, event.place);
  }
  return {};
}

bool Listeners::may_be_told_of(const Event& event) const {
  switch (event.kind) {
    case Event::Kind::topic: {
      const auto camera = records_.topics.find(event.place);
      return camera != records_.topics.end() && camera->second.count(event.text) != 0;
    }
    case Event::Kind::object:
      return records_.detection.count(event.place) != 0 && searching_.count(event.text) != 0;
    case Event::Kind::motion:
      return records_.detection.count(event.place) != 0;
    case Event::Kind::subscription:
      return records_.generic.count(event.place) != 0;
  }
  return false;
}

Listeners::Ids Listeners::detecting(std::uint64_t camera_id, const Ids& wanted) const {
  const auto held = records_.detection.find(camera_id);
  Listeners::Ids both;
  if (held != records_.detection.end()) {
    std::set_intersection(held->second.begin(), held->second.end(), wanted.begin(), wanted.end(),
                          std::back_inserter(both));
  }
  return both;
}

}  // namespace kuv::vemora::operations
