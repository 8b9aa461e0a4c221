#include "unit/fakes/fake_repository.h"

#include <gtest/gtest.h>

namespace kuv::test {
namespace {

using namespace kuv::vemora;

/// Nothing here is for the parser.
template <class Answer = bool>
Answer unexpected(const char* operation) {
  ADD_FAILURE() << "unexpected call of " << operation;
  return Answer();
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
    return unexpected<Camera_List>("get_cameras_matching_tags");
  }
  Camera_List get_cameras_needing_subscription(const std::string&, const Camera_List&) override {
    return unexpected<Camera_List>("get_cameras_needing_subscription");
  }
  Camera_List get_object_detection_cameras(const Camera_List&) override {
    return unexpected<Camera_List>("get_object_detection_cameras");
  }
  Camera_List get_motion_detection_cameras(const Camera_List&) override {
    return unexpected<Camera_List>("get_motion_detection_cameras");
  }
};

struct No_Categories : Metadata_Event_Category_Repository {
  std::shared_ptr<metadata_event_category> find_by_name(const std::string&) override {
    return unexpected<std::shared_ptr<metadata_event_category>>("find_by_name");
  }
};

struct No_Subscriptions : Metadata_Event_Subscription_Repository {
  bool add(const std::shared_ptr<metadata_event_subscription>&) override {
    return unexpected("subscription add");
  }
  bool update(const std::shared_ptr<metadata_event_subscription>&) override {
    return unexpected("subscription update");
  }
  Subscription_List Get_Matching_Subscriptions(const Get_Matching_Subscriptions_Params&) override {
    return unexpected<Subscription_List>("Get_Matching_Subscriptions");
  }
  Subscription_List get_stale(const std::set<std::uint64_t>&) override {
    return unexpected<Subscription_List>("get_stale");
  }
  void delete_stale() override { unexpected("subscription delete_stale"); }
};

struct No_Triggers : Trigger_Repository {
  std::shared_ptr<trigger> find_by_id(std::uint64_t) override {
    return unexpected<std::shared_ptr<trigger>>("find_by_id");
  }
  bool add(const std::shared_ptr<trigger>&) override { return unexpected("trigger add"); }
  bool update(const std::shared_ptr<trigger>&) override { return unexpected("trigger update"); }
  void delete_all_except(const std::set<std::uint64_t>&) override {
    unexpected("delete_all_except");
  }
  void delete_all() override { unexpected("delete_all"); }
};

struct No_ETA_Cameras : ETA_Camera_Repository {
  std::shared_ptr<eta_camera> get_by_camera_id(std::uint64_t) override {
    return unexpected<std::shared_ptr<eta_camera>>("get_by_camera_id");
  }
  bool add(const std::shared_ptr<eta_camera>&) override { return unexpected("eta_camera add"); }
  bool update(const std::shared_ptr<eta_camera>&) override {
    return unexpected("eta_camera update");
  }
  Record_List get(const Get_Params&) override { return unexpected<Record_List>("eta_camera get"); }
  Record_List get_all() override { return unexpected<Record_List>("eta_camera get_all"); }
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
