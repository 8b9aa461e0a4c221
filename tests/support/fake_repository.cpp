// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "support/fake_repository.h"

#include <stdexcept>
#include <string>

namespace kuv::test {
namespace {

using namespace kuv::vemora;

[[noreturn]] void unexpected(const char* operation) {
  throw std::logic_error(std::string("unexpected call of ") + operation);
}

struct Fake_Servers : Server_Repository {
  explicit Fake_Servers(Fake_Table<server>& servers) : table(servers) {}
  std::shared_ptr<server> get_by_id(std::uint64_t id) override { return table.get(id); }
  Fake_Table<server>& table;
};

struct Fake_Schedules : Schedule_Repository {
  explicit Fake_Schedules(Fake_Table<schedule>& schedules) : table(schedules) {}
  std::shared_ptr<schedule> get_by_id(std::uint64_t id) override { return table.get(id); }
  Fake_Table<schedule>& table;
};

struct No_Cameras : Camera_Repository {
  Camera_List get_cameras_matching_tags(const std::set<ODB_Utils::Tag_Search_Term>&) override {
    unexpected("get_cameras_matching_tags");
  }
  Camera_List get_cameras_needing_subscription(const std::string&, const Camera_List&) override {
    unexpected("get_cameras_needing_subscription");
  }
  Camera_List get_object_detection_cameras(const Camera_List&) override {
    unexpected("get_object_detection_cameras");
  }
  Camera_List get_motion_detection_cameras(const Camera_List&) override {
    unexpected("get_motion_detection_cameras");
  }
};

struct No_Categories : Metadata_Event_Category_Repository {
  std::shared_ptr<metadata_event_category> find_by_name(const std::string&) override {
    unexpected("find_by_name");
  }
};

struct No_Subscriptions : Metadata_Event_Subscription_Repository {
  bool add(const std::shared_ptr<metadata_event_subscription>&) override {
    unexpected("subscription add");
  }
  bool update(const std::shared_ptr<metadata_event_subscription>&) override {
    unexpected("subscription update");
  }
  Subscription_List Get_Matching_Subscriptions(const Get_Matching_Subscriptions_Params&) override {
    unexpected("Get_Matching_Subscriptions");
  }
  Subscription_List get_stale(const std::set<std::uint64_t>&) override { unexpected("get_stale"); }
  void delete_stale() override { unexpected("subscription delete_stale"); }
};

struct No_Triggers : Trigger_Repository {
  std::shared_ptr<trigger> find_by_id(std::uint64_t) override { unexpected("find_by_id"); }
  bool add(const std::shared_ptr<trigger>&) override { unexpected("trigger add"); }
  bool update(const std::shared_ptr<trigger>&) override { unexpected("trigger update"); }
  void delete_all_except(const std::set<std::uint64_t>&) override {
    unexpected("delete_all_except");
  }
  void delete_all() override { unexpected("delete_all"); }
};

struct No_ETA_Cameras : ETA_Camera_Repository {
  std::shared_ptr<eta_camera> get_by_camera_id(std::uint64_t) override {
    unexpected("get_by_camera_id");
  }
  bool add(const std::shared_ptr<eta_camera>&) override { unexpected("eta_camera add"); }
  bool update(const std::shared_ptr<eta_camera>&) override { unexpected("eta_camera update"); }
  Record_List get(const Get_Params&) override { unexpected("eta_camera get"); }
  Record_List get_all() override { unexpected("eta_camera get_all"); }
  void delete_stale() override { unexpected("eta_camera delete_stale"); }
};

}  // namespace

std::shared_ptr<Repository> make_fake_repository(Fake_Database& database) {
  return std::make_shared<Repository>(
      std::make_unique<No_Cameras>(), std::make_unique<Fake_Servers>(database.servers),
      std::make_unique<No_Categories>(), std::make_unique<No_Subscriptions>(),
      std::make_unique<No_Triggers>(), std::make_unique<Fake_Schedules>(database.schedules),
      std::make_unique<No_ETA_Cameras>());
}

}  // namespace kuv::test
