// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "repositories.h"

#include <algorithm>
#include <map>

#include "vemora/platform/tags/tag_filter.h"

namespace other_server {
namespace {

using namespace kuv::vemora;

template <class Record>
using Table = std::map<std::uint64_t, std::shared_ptr<Record>>;

struct Site {
  std::shared_ptr<camera> door = std::make_shared<camera>();
  Table<trigger> triggers;
  Table<eta_camera> detection;
};
using Shared_Site = std::shared_ptr<Site>;

class Cameras : public Camera_Repository {
 public:
  explicit Cameras(Shared_Site site) : site_(std::move(site)) {}

  Camera_List get_cameras_matching_tags(
      const std::set<ODB_Utils::Tag_Search_Term>& terms) override {
    return Tag_Filter::matches_any(site_->door->tags, terms) ? Camera_List{site_->door}
                                                             : Camera_List{};
  }
  Camera_List get_cameras_needing_subscription(const std::string& /*onvif_topic*/,
                                               const Camera_List& /*cameras*/) override {
    return {};
  }
  Camera_List get_object_detection_cameras(const Camera_List& cameras) override {
    return cameras.empty() ? Camera_List{site_->door} : cameras;
  }
  Camera_List get_motion_detection_cameras(const Camera_List& /*cameras*/) override { return {}; }

 private:
  Shared_Site site_;
};

class Servers : public Server_Repository {
 public:
  std::shared_ptr<server> get_by_id(std::uint64_t id) override {
    auto record = std::make_shared<server>();
    record->id = id;
    return record;
  }
};

class Categories : public Metadata_Event_Category_Repository {
 public:
  std::shared_ptr<metadata_event_category> find_by_name(const std::string& /*name*/) override {
    return nullptr;
  }
};

/// This server's cameras report no events.
class Subscriptions : public Metadata_Event_Subscription_Repository {
 public:
  bool add(const std::shared_ptr<metadata_event_subscription>& /*added*/) override { return false; }
  bool update(const std::shared_ptr<metadata_event_subscription>& /*changed*/) override {
    return false;
  }
  Subscription_List Get_Matching_Subscriptions(
      const Get_Matching_Subscriptions_Params& /*params*/) override {
    return {};
  }
  Subscription_List get_stale(const std::set<std::uint64_t>& /*live_trigger_ids*/) override {
    return {};
  }
  void delete_stale() override {}
};

class Triggers : public Trigger_Repository {
 public:
  explicit Triggers(Shared_Site site) : site_(std::move(site)) {}

  std::shared_ptr<trigger> find_by_id(std::uint64_t id) override {
    const auto found = site_->triggers.find(id);
    return found == site_->triggers.end() ? nullptr : found->second;
  }
  bool add(const std::shared_ptr<trigger>& added) override {
    return site_->triggers.emplace(added->id, added).second;
  }
  bool update(const std::shared_ptr<trigger>& changed) override {
    return site_->triggers.count(changed->id) != 0;
  }
  void delete_all_except(const std::set<std::uint64_t>& kept) override {
    for (auto next = site_->triggers.begin(); next != site_->triggers.end();) {
      const auto stored = next++;
      if (kept.count(stored->first) == 0) {
        for (const auto& [id, record] : site_->detection) {
          record->remove_trigger(stored->second);
        }
        site_->triggers.erase(stored);
      }
    }
  }
  void delete_all() override { delete_all_except({}); }

 private:
  Shared_Site site_;
};

class Schedules : public Schedule_Repository {
 public:
  std::shared_ptr<schedule> get_by_id(std::uint64_t /*id*/) override { return nullptr; }
};

class Detection : public ETA_Camera_Repository {
 public:
  explicit Detection(Shared_Site site) : site_(std::move(site)) {}

  std::shared_ptr<eta_camera> get_by_camera_id(std::uint64_t camera_id) override {
    const auto found = site_->detection.find(camera_id);
    return found == site_->detection.end() ? nullptr : found->second;
  }
  bool add(const std::shared_ptr<eta_camera>& added) override {
    added->id = added->camera_id();
    return site_->detection.emplace(added->id, added).second;
  }
  bool update(const std::shared_ptr<eta_camera>& changed) override {
    return site_->detection.count(changed->id) != 0;
  }
  Record_List get(const Get_Params& params) override {
    const bool inside = params.cameras_match == Get_Params::Cameras::matching;
    Record_List found;
    for (const auto& record : get_all()) {
      const bool named =
          std::any_of(params.cameras.begin(), params.cameras.end(),
                      [&record](const auto& wanted) { return wanted->id == record->camera_id(); });
      if ((!params.trigger || record->triggers.count(params.trigger) != 0) &&
          (params.cameras.empty() || named == inside)) {
        found.push_back(record);
      }
    }
    return found;
  }
  Record_List get_all() override {
    Record_List all;
    for (const auto& [id, record] : site_->detection) {
      all.push_back(record);
    }
    return all;
  }
  void delete_stale() override {
    for (const auto& record : get_all()) {
      if (record->triggers.empty()) {
        site_->detection.erase(record->id);
      }
    }
  }

 private:
  Shared_Site site_;
};

}  // namespace

std::shared_ptr<Repository> make_repository() {
  const auto site = std::make_shared<Site>();
  site->door->id = 10;
  site->door->tags["door"];
  return std::make_shared<Repository>(
      std::make_unique<Cameras>(site), std::make_unique<Servers>(), std::make_unique<Categories>(),
      std::make_unique<Subscriptions>(), std::make_unique<Triggers>(site),
      std::make_unique<Schedules>(), std::make_unique<Detection>(site));
}

}  // namespace other_server
