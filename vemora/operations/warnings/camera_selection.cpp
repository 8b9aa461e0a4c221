// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/camera_selection.h"

#include <algorithm>
#include <iterator>

#include "vemora/embedded_server/persistent/site_reader.h"
#include "vemora/platform/records/supported_topics.h"

namespace kuv::vemora::operations {
namespace {

using Camera_List = Camera_Repository::Camera_List;

/// Asks about one camera, and about ever more at once as long as the answer is no: mostly the first
/// will do, and where none does there are few questions. Never asks about no cameras, which would
/// mean all.
template <class Question>
bool is_there_one(const Camera_List& cameras, Question question) {
  std::size_t size = 1;
  for (std::size_t begin = 0; begin < cameras.size(); begin += size, size *= 8) {
    size = std::min(size, cameras.size() - begin);
    const auto first = std::next(cameras.begin(), static_cast<std::ptrdiff_t>(begin));
    if (question(Camera_List(first, std::next(first, static_cast<std::ptrdiff_t>(size))))) {
      return true;
    }
  }
  return false;
}

}  // namespace

Camera_Selections::Selection Camera_Selections::of(const Terms& terms) {
  const auto [known, is_new] = known_.try_emplace(terms);
  if (is_new) {
    known->second.count = cameras_of(terms).size();
  }
  return {*this, known->first, known->second};
}

const Camera_Selections::Cameras& Camera_Selections::cameras_of(const Terms& terms) {
  if (!last_terms_ || *last_terms_ != terms) {
    last_cameras_ = repository_.cameras().get_cameras_matching_tags(terms);
    last_terms_ = terms;
  }
  return last_cameras_;
}

bool Camera_Selections::is_subscribed(const Cameras& cameras, const std::string& topic) {
  return is_there_one(cameras, [&](const Cameras& some) {
    return repository_.cameras().get_cameras_needing_subscription(topic, some).size() < some.size();
  });
}

/// A damaged text must not be looked at: the pass would fail over it here, before its first
/// trigger.
bool Camera_Selections::may_be_supported(const Cameras& cameras, const std::string& topic) {
  return std::any_of(cameras.begin(), cameras.end(), [&](const auto& record) {
    return !is_readable(*record) || is_supported(supported_topics(*record), topic);
  });
}

bool Camera_Selections::is_readable(const camera& record) {
  const auto [known, is_new] = readable_.try_emplace(record.id);
  if (is_new) {
    known->second = embedded_server::has_readable_capabilities(database_, record.id);
  }
  return known->second;
}

Camera_Selections::Topic Camera_Selections::judged(const Cameras& cameras,
                                                   const std::string& topic) {
  const bool is_heard = in_pass_
                            ? is_subscribed(cameras, topic) || may_be_supported(cameras, topic)
                            : may_be_supported(cameras, topic) || is_subscribed(cameras, topic);
  return {is_heard, is_heard ? std::string() : nearest_topic(cameras, topic)};
}

std::string Camera_Selections::nearest_topic(const Cameras& cameras, const std::string& topic) {
  Nearest_Name nearest(topic);
  std::set<const Capability_Document::Tree*> seen;  // cameras of one model share theirs
  for (const std::shared_ptr<camera>& record : cameras) {
    const Capability_Document::Tree& topics = supported_topics(*record);
    if (!seen.insert(&topics).second) {
      continue;
    }
    for (const auto& [name, unused] : topics) {
      if (budget_.is_spent()) {
        return {};
      }
      budget_.spend(nearest.offer(name));
    }
  }
  return std::string(nearest.found());
}

bool Camera_Selections::Selection::detects_objects() {
  if (!known_.detects_objects) {
    known_.detects_objects = is_there_one(all_.cameras_of(terms_), [this](const Camera_List& some) {
      return !all_.repository_.cameras().get_object_detection_cameras(some).empty();
    });
  }
  return *known_.detects_objects;
}

bool Camera_Selections::Selection::detects_motion() {
  if (!known_.detects_motion) {
    known_.detects_motion = is_there_one(all_.cameras_of(terms_), [this](const Camera_List& some) {
      return !all_.repository_.cameras().get_motion_detection_cameras(some).empty();
    });
  }
  return *known_.detects_motion;
}

const Camera_Selections::Topic& Camera_Selections::Selection::judged(const std::string& topic) {
  const auto known = known_.topics.find(topic);
  return known != known_.topics.end()
             ? known->second
             : known_.topics.emplace(topic, all_.judged(all_.cameras_of(terms_), topic))
                   .first->second;
}

}  // namespace kuv::vemora::operations
