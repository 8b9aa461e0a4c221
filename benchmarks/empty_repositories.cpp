// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "benchmarks/empty_repositories.h"

#include <unordered_map>

namespace kuv::benchmarks {
namespace {

using namespace vemora;

class No_Cameras : public Camera_Repository {
 public:
  Camera_List get_cameras_matching_tags(const std::set<ODB_Utils::Tag_Search_Term>&) override {
    return {};
  }
  Camera_List get_cameras_needing_subscription(const std::string&, const Camera_List&) override {
    return {};
  }
  Camera_List get_object_detection_cameras(const Camera_List&) override { return {}; }
  Camera_List get_motion_detection_cameras(const Camera_List&) override { return {}; }
};

class One_Server : public Server_Repository {
 public:
  std::shared_ptr<server> get_by_id(std::uint64_t) override { return server_; }

 private:
  std::shared_ptr<server> server_ = std::make_shared<server>();
};

class No_Categories : public Metadata_Event_Category_Repository {
 public:
  std::shared_ptr<metadata_event_category> find_by_name(const std::string&) override {
    return nullptr;
  }
};

class No_Subscriptions : public Metadata_Event_Subscription_Repository {
 public:
  bool add(const std::shared_ptr<metadata_event_subscription>&) override { return true; }
  bool update(const std::shared_ptr<metadata_event_subscription>&) override { return true; }
  Subscription_List Get_Matching_Subscriptions(const Get_Matching_Subscriptions_Params&) override {
    return {};
  }
  Subscription_List get_stale(const std::set<std::uint64_t>&) override { return {}; }
  void delete_stale() override {}
};

class Kept_Triggers : public Trigger_Repository {
 public:
  std::shared_ptr<trigger> find_by_id(std::uint64_t id) override {
    const auto found = triggers_.find(id);
    return found == triggers_.end() ? nullptr : found->second;
  }
  bool add(const std::shared_ptr<trigger>& added) override {
    triggers_[added->id] = added;
    return true;
  }
  bool update(const std::shared_ptr<trigger>&) override { return true; }
  void delete_all_except(const std::set<std::uint64_t>&) override {}
  void delete_all() override {}

 private:
  std::unordered_map<std::uint64_t, std::shared_ptr<trigger>> triggers_;
};

class No_Schedules : public Schedule_Repository {
 public:
  std::shared_ptr<schedule> get_by_id(std::uint64_t) override { return nullptr; }
};

class No_Detection : public ETA_Camera_Repository {
 public:
  std::shared_ptr<eta_camera> get_by_camera_id(std::uint64_t) override { return nullptr; }
  bool add(const std::shared_ptr<eta_camera>&) override { return true; }
  bool update(const std::shared_ptr<eta_camera>&) override { return true; }
  Record_List get(const Get_Params&) override { return {}; }
  Record_List get_all() override { return {}; }
  void delete_stale() override {}
};

}  // namespace

std::shared_ptr<Repository> make_empty_repositories() {
  return std::make_shared<Repository>(
      std::make_unique<No_Cameras>(), std::make_unique<One_Server>(),
      std::make_unique<No_Categories>(), std::make_unique<No_Subscriptions>(),
      std::make_unique<Kept_Triggers>(), std::make_unique<No_Schedules>(),
      std::make_unique<No_Detection>());
}

}  // namespace kuv::benchmarks
