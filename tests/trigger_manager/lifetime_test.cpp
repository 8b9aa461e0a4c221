// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <json/value.h>

#include <thread>

#include "support/stub_platform/stub_platform.h"
#include "trigger_manager/manager_test.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;

/// Managers of documents that matter, over collaborators of which none may be called.
class Manager_Lifetime : public testing::Test {
 protected:
  template <class Mock>
  using Strict = testing::StrictMock<Mock>;

  std::unique_ptr<Trigger_Manager> a_manager(const Json::Value& config,
                                             const Json::Value& mapping) {
    return std::make_unique<Vemora_Trigger_Manager>(
        config, mapping, database.repository, capture_manager,
        std::make_unique<Strict<Mock_Trigger_Parser>>(), pusher, resolver);
  }

  Json::Value config_kept_of(const std::string& config) {
    return a_manager(json(config), json("{}"))->get_config();
  }

  Json::Value mapping_kept_of(const std::string& mapping) {
    return a_manager(json("{}"), json(mapping))->get_trigger_mapping();
  }

  Mock_Repository database;
  std::shared_ptr<Strict<Mock_Capture_Manager>> capture_manager =
      std::make_shared<Strict<Mock_Capture_Manager>>();
  std::shared_ptr<Strict<Mock_Trigger_Notification_Pusher>> pusher =
      std::make_shared<Strict<Mock_Trigger_Notification_Pusher>>();
  std::shared_ptr<Strict<Mock_Meta_Type_Resolver>> resolver =
      std::make_shared<Strict<Mock_Meta_Type_Resolver>>();
};

TEST_F(Manager_Lifetime, keeps_the_documents_and_calls_nobody) {
  const Json::Value config =
      json(R"({"triggers": [{"id": 7}], "properties": {"a": 1}, "b": null})");
  const Json::Value mapping = json(R"({"triggerMapping": [{"triggerIds": [7]}], "c": [true]})");

  const auto manager = a_manager(config, mapping);

  EXPECT_EQ(manager->get_config(), config);
  EXPECT_EQ(manager->get_trigger_mapping(), mapping);
}

TEST_F(Manager_Lifetime, gives_a_configuration_without_triggers_an_empty_array) {
  EXPECT_EQ(config_kept_of("{}"), json(R"({"triggers": []})"));
  EXPECT_EQ(config_kept_of(R"({"triggers": null})"), json(R"({"triggers": []})"));
  EXPECT_EQ(config_kept_of(R"({"properties": {}})"), json(R"({"triggers": [], "properties": {}})"));
}

TEST_F(Manager_Lifetime, makes_a_null_configuration_an_object_with_an_empty_array) {
  EXPECT_EQ(config_kept_of("null"), json(R"({"triggers": []})"));
}

TEST_F(Manager_Lifetime, gives_a_mapping_without_associations_an_empty_array) {
  EXPECT_EQ(mapping_kept_of("{}"), json(R"({"triggerMapping": []})"));
  EXPECT_EQ(mapping_kept_of(R"({"triggerMapping": null})"), json(R"({"triggerMapping": []})"));
  EXPECT_EQ(mapping_kept_of(R"({"a": 1})"), json(R"({"triggerMapping": [], "a": 1})"));
}

TEST_F(Manager_Lifetime, makes_a_null_mapping_an_object_with_an_empty_array) {
  EXPECT_EQ(mapping_kept_of("null"), json(R"({"triggerMapping": []})"));
}

TEST_F(Manager_Lifetime, keeps_whatever_stands_under_the_keys_even_if_it_is_no_array) {
  for (const std::string value :
       {R"("text")", "{}", "0", "false", R"("")", "[]", "[null]", "1.5"}) {
    const std::string config = R"({"triggers": )" + value + "}";
    const std::string mapping = R"({"triggerMapping": )" + value + "}";
    EXPECT_EQ(config_kept_of(config), json(config));
    EXPECT_EQ(mapping_kept_of(mapping), json(mapping));
  }
}

TEST_F(Manager_Lifetime, does_not_exist_over_a_document_that_is_neither_null_nor_an_object) {
  for (const char* document : {"[]", R"([{"triggers": []}])", R"("text")", "7", "1.5", "true"}) {
    EXPECT_THROW(a_manager(json(document), json("{}")), Json::LogicError) << document;
    EXPECT_THROW(a_manager(json("{}"), json(document)), Json::LogicError) << document;
  }
  EXPECT_EQ(capture_manager.use_count(), 1);
  EXPECT_EQ(pusher.use_count(), 1);
  EXPECT_EQ(resolver.use_count(), 1);
  EXPECT_EQ(database.repository.use_count(), 1);
}

TEST_F(Manager_Lifetime, opens_its_log_source_and_then_completes_both_documents) {
  std::vector<std::string> calls;
  const stub_platform::Listening listening(
      [&](stub_platform::Function, const std::string& call) { calls.push_back(call); });

  a_manager(json(R"({"triggers": [1]})"), json("null"));

  EXPECT_THAT(calls, ElementsAre(R"(init_ "Trigger_Manager" "")",  //
                                 "set_json_value_if_null [1] []",  //
                                 "set_json_value_if_null null []"));
}

TEST_F(Manager_Lifetime, answers_copies_that_are_the_callers_own) {
  const auto manager = a_manager(json("{}"), json("{}"));

  Json::Value config = manager->get_config();
  config["triggers"].append(7);
  Json::Value mapping = manager->get_trigger_mapping();
  mapping.clear();

  EXPECT_EQ(manager->get_config(), json(R"({"triggers": []})"));
  EXPECT_EQ(manager->get_trigger_mapping(), json(R"({"triggerMapping": []})"));
}

TEST_F(Manager_Lifetime, takes_copies_of_the_documents_it_is_given) {
  Json::Value config = json(R"({"triggers": [1]})");
  Json::Value mapping = json(R"({"triggerMapping": [2]})");
  const auto manager = a_manager(config, mapping);

  config["triggers"].append(7);
  mapping.clear();

  EXPECT_EQ(manager->get_config(), json(R"({"triggers": [1]})"));
  EXPECT_EQ(manager->get_trigger_mapping(), json(R"({"triggerMapping": [2]})"));
}

TEST_F(Manager_Lifetime, takes_null_collaborators_as_they_are) {
  Vemora_Trigger_Manager manager(json("{}"), json("{}"), nullptr, nullptr, nullptr, nullptr,
                                 nullptr);

  EXPECT_EQ(manager.get_config(), json(R"({"triggers": []})"));
}

TEST_F(Manager_Lifetime, logs_nothing_when_it_comes_and_goes) {
  const Log_Capture log;
  a_manager(json("{}"), json("{}"));
  EXPECT_THAT(log.lines(), ElementsAre());
}

// Collaborators that note when they are destroyed.

using Notes = std::vector<std::string>;

template <class Base>
class Noting : public testing::StrictMock<Base> {
 public:
  Noting(Notes& notes, const char* name) : notes_(notes), name_(name) {}
  ~Noting() override { notes_.push_back(name_); }

 private:
  Notes& notes_;
  const char* name_;
};

TEST_F(Manager_Lifetime, releases_its_collaborators_in_reverse_order_and_calls_none_of_them) {
  Notes gone;
  auto noting_repository = std::shared_ptr<Repository>(
      database.repository.get(), [&gone](Repository*) { gone.emplace_back("repository"); });
  auto manager = std::make_unique<Vemora_Trigger_Manager>(
      json("{}"), json("{}"), std::move(noting_repository),
      std::make_shared<Noting<Mock_Capture_Manager>>(gone, "capture manager"),
      std::make_unique<Noting<Mock_Trigger_Parser>>(gone, "parser"),
      std::make_shared<Noting<Mock_Trigger_Notification_Pusher>>(gone, "pusher"),
      std::make_shared<Noting<Mock_Meta_Type_Resolver>>(gone, "resolver"));
  EXPECT_THAT(gone, ElementsAre());

  std::unique_ptr<Trigger_Manager> as_the_server_holds_it = std::move(manager);
  as_the_server_holds_it.reset();

  EXPECT_THAT(gone, ElementsAre("resolver", "pusher", "parser", "capture manager", "repository"));
}

TEST_F(Manager_Lifetime, moves_the_shared_collaborators_in) {
  std::weak_ptr<Mock_Meta_Type_Resolver> watched = resolver;
  const Vemora_Trigger_Manager manager(
      json("{}"), json("{}"), std::move(database.repository), std::move(capture_manager),
      std::make_unique<Strict<Mock_Trigger_Parser>>(), std::move(pusher), std::move(resolver));

  EXPECT_EQ(watched.use_count(), 1);  // the manager's
}

}  // namespace
}  // namespace kuv::test
