// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "embedded_server/persistent/site_at_work.h"

#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;

std::shared_ptr<camera> camera_of(std::uint64_t id) {
  auto record = std::make_shared<camera>();
  record->id = id;
  return record;
}

}  // namespace

std::string complaint_of(const std::function<void()>& action) {
  try {
    action();
  } catch (const Database_Error& error) {
    return error.what();
  }
  return "no complaint";
}

std::vector<Operation> all_operations() {
  const auto some_trigger = a_trigger(99);
  const auto some_camera = std::make_shared<camera>();
  some_camera->id = 11;
  const auto subscription = std::make_shared<metadata_event_subscription>();
  subscription->onvif_topic = "b";
  subscription->camera = some_camera;
  const auto watched = std::make_shared<eta_camera>();
  watched->camera = some_camera;
  return {
      {"find a trigger", [](Repository& r) { r.triggers().find_by_id(7); }},
      {"add a trigger", [=](Repository& r) { r.triggers().add(some_trigger); }},
      {"update a trigger", [=](Repository& r) { r.triggers().update(some_trigger); }},
      {"delete triggers but", [](Repository& r) { r.triggers().delete_all_except({7}); }},
      {"delete all triggers", [](Repository& r) { r.triggers().delete_all(); }},
      {"add a subscription",
       [=](Repository& r) { r.metadata_event_subscriptions().add(subscription); }},
      {"update a subscription",
       [=](Repository& r) { r.metadata_event_subscriptions().update(subscription); }},
      {"match subscriptions",
       [](Repository& r) { r.metadata_event_subscriptions().Get_Matching_Subscriptions({}); }},
      {"get stale subscriptions",
       [](Repository& r) { r.metadata_event_subscriptions().get_stale({}); }},
      {"delete stale subscriptions",
       [](Repository& r) { r.metadata_event_subscriptions().delete_stale(); }},
      {"get the record of a camera", [](Repository& r) { r.eta_cameras().get_by_camera_id(10); }},
      {"add a record", [=](Repository& r) { r.eta_cameras().add(watched); }},
      {"update a record", [=](Repository& r) { r.eta_cameras().update(watched); }},
      {"match records", [](Repository& r) { r.eta_cameras().get({}); }},
      {"get all records", [](Repository& r) { r.eta_cameras().get_all(); }},
      {"delete stale records", [](Repository& r) { r.eta_cameras().delete_stale(); }},
      {"match tags", [](Repository& r) { r.cameras().get_cameras_matching_tags({}); }},
      {"get cameras in need",
       [](Repository& r) { r.cameras().get_cameras_needing_subscription("a", {}); }},
      {"get object cameras", [](Repository& r) { r.cameras().get_object_detection_cameras({}); }},
      {"get motion cameras", [](Repository& r) { r.cameras().get_motion_detection_cameras({}); }},
      {"get a server", [](Repository& r) { r.servers().get_by_id(1); }},
      {"get a schedule", [](Repository& r) { r.schedules().get_by_id(1); }},
      {"find a category", [](Repository& r) { r.metadata_event_categories().find_by_name("a"); }},
  };
}

Site_At_Work::Site_At_Work(const Database_Engine& engine) : Database_Fixture(engine) {
  site.given_server(server_id);
  site.given_schedule(1);
  site.given_camera(10).with_topic("a");
  site.given_camera(11);
  site.given_generic_subscription(100).with_tag("door");
}

void Site_At_Work::given_a_trigger_at_work() {
  Pass_Scope pass(database(), server_id);
  const auto repository = make_repository(database());
  work_on_camera(*repository, 7, 10);
  pass.end();
  pass.store({"{}", "{}"}, pass.pending_cameras());
}

void Site_At_Work::work_on_camera(Repository& repository, std::uint64_t trigger_id,
                                  std::uint64_t camera_id) {
  const auto added = a_trigger(trigger_id, {onvif("a"), object_detection("person")});
  EXPECT_TRUE(repository.triggers().add(added));
  const auto listened_to = std::make_shared<metadata_event_subscription>();
  listened_to->name = "a";
  listened_to->onvif_topic = "a";
  listened_to->camera = camera_of(camera_id);
  listened_to->add_trigger(added);
  EXPECT_TRUE(repository.metadata_event_subscriptions().add(listened_to));
  const auto watched = std::make_shared<eta_camera>();
  watched->camera = camera_of(camera_id);
  watched->add_trigger(added);
  EXPECT_TRUE(repository.eta_cameras().add(watched));
  repository.metadata_event_subscriptions().delete_stale();
  repository.eta_cameras().delete_stale();
}

void Site_At_Work::expect_the_next_pass_to_work() {
  {
    Pass_Scope pass(database(), server_id);
    const auto repository = make_repository(database());
    work_on_camera(*repository, 8, 11);
    pass.end();
    EXPECT_EQ(pass.fault(), std::nullopt);
    pass.store({"{ }", std::nullopt}, pass.pending_cameras());
  }
  close();
  EXPECT_THAT(
      texts_of(read_eta_cameras(database())),
      ElementsAre("detection 1 camera 10 triggers [7]", "detection 2 camera 11 triggers [8]"));
  EXPECT_EQ(read_documents(database()).config, "{ }");
}

}  // namespace kuv::test
