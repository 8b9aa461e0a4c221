// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/pass_scope.h"

#include <fmt/format.h>

#include <stdexcept>
#include <thread>

#include "embedded_server/persistent/database_test.h"
#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

std::vector<std::string> link_texts(const std::vector<Changes::Link>& links) {
  std::vector<std::string> texts;
  for (const Changes::Link& link : links) {
    texts.push_back(fmt::format("{}-{}", link.record_id, link.trigger_id));
  }
  return texts;
}

/// A site of two cameras with two triggers on both.
class Passes : public Database_Test {
 protected:
  Passes() {
    site.given_camera(10);
    site.given_camera(11);
    site.given_generic_subscription(100);
  }

  Repository& repository() {
    if (!repository_) {
      repository_ = make_repository(database());
    }
    return *repository_;
  }

  /// Opens a pass over the database.
  std::unique_ptr<Pass_Scope> a_pass(Pass_Scope::Mode mode = Pass_Scope::Mode::commit) {
    return std::make_unique<Pass_Scope>(database(), server_id, mode);
  }

  std::shared_ptr<trigger> add_trigger(std::uint64_t id) {
    const auto added = a_trigger(id);
    EXPECT_TRUE(repository().triggers().add(added));
    return added;
  }

  void add_subscription(std::uint64_t camera_id, const std::string& topic,
                        const std::shared_ptr<trigger>& held) {
    const auto added = std::make_shared<metadata_event_subscription>();
    added->name = topic;
    added->onvif_topic = topic;
    added->camera = camera_of(camera_id);
    added->add_trigger(held);
    EXPECT_TRUE(repository().metadata_event_subscriptions().add(added));
  }

  void add_eta_camera(std::uint64_t camera_id, const std::shared_ptr<trigger>& held) {
    const auto added = std::make_shared<eta_camera>();
    added->camera = camera_of(camera_id);
    added->add_trigger(held);
    EXPECT_TRUE(repository().eta_cameras().add(added));
  }

  static std::shared_ptr<camera> camera_of(std::uint64_t id) {
    auto record = std::make_shared<camera>();
    record->id = id;
    return record;
  }

  /// Both triggers on a subscription and a detection record of both cameras.
  void given_two_triggers_at_work() {
    const auto pass = a_pass();
    for (const std::uint64_t id : {7, 8}) {
      add_trigger(id);
    }
    for (const std::uint64_t camera_id : {10, 11}) {
      add_subscription(camera_id, "a", find(7));
      add_eta_camera(camera_id, find(7));
    }
    for (const std::uint64_t id : {1, 2}) {
      const auto record = subscription(id);
      record->add_trigger(find(8));
      EXPECT_TRUE(repository().metadata_event_subscriptions().update(record));
    }
    for (const auto& record : eta_cameras()) {
      record->add_trigger(find(8));
      EXPECT_TRUE(repository().eta_cameras().update(record));
    }
    clean_up();
    pass->end();
    pass->store({}, pass->pending_cameras());
  }

  std::shared_ptr<trigger> find(std::uint64_t id) { return repository().triggers().find_by_id(id); }

  std::vector<std::shared_ptr<metadata_event_subscription>> subscriptions() {
    return repository().metadata_event_subscriptions().get_stale({});
  }
  std::shared_ptr<metadata_event_subscription> subscription(std::uint64_t id) {
    for (const auto& record : subscriptions()) {
      if (record->id == id) {
        return record;
      }
    }
    throw std::out_of_range("no subscription " + std::to_string(id));
  }
  std::vector<std::shared_ptr<eta_camera>> eta_cameras() {
    return repository().eta_cameras().get_all();
  }

  /// What the trigger manager does at the end of a pass; the second half is the last write.
  void clean_up() {
    repository().metadata_event_subscriptions().delete_stale();
    repository().eta_cameras().delete_stale();
  }

  std::map<std::string, Rows> stored() { return foreign_program().everything(); }

 private:
  std::shared_ptr<Repository> repository_;
};

INSTANTIATE_TEST_SUITE_P(Engines, Passes, testing::ValuesIn(database_engines()), name_of_engine);

TEST_P(Passes, show_nobody_else_what_they_have_not_committed) {
  const auto before = (database(), stored());
  const auto pass = a_pass();

  add_subscription(10, "a", add_trigger(7));
  repository().metadata_event_subscriptions().delete_stale();

  EXPECT_EQ(stored(), before);
}

TEST_P(Passes, start_over_with_the_state_that_they_began_with_whatever_was_written_since) {
  given_two_triggers_at_work();
  const auto pass = a_pass(Pass_Scope::Mode::read_only);
  const std::vector<std::string> before = texts_of(subscriptions());
  const std::vector<std::string> detecting = texts_of(eta_cameras());
  repository().triggers().delete_all_except({7});
  add_subscription(10, "b", add_trigger(9));
  clean_up();
  pass->end();
  EXPECT_FALSE(pass->changes().empty());
  EXPECT_THAT(pass->pending_cameras(), ElementsAre(10));
  foreign_program().execute("DELETE FROM subscription_trigger");
  foreign_program().execute("DELETE FROM eta_camera_trigger");

  pass->start_over();

  EXPECT_EQ(texts_of(subscriptions()), before);
  EXPECT_EQ(texts_of(eta_cameras()), detecting);
  EXPECT_TRUE(find(8));
  EXPECT_FALSE(find(9));
  EXPECT_TRUE(pass->changes().empty());
  EXPECT_THAT(pass->pending_cameras(), IsEmpty());
}

TEST_P(Passes, that_are_committed_cannot_start_over) {
  const auto pass = a_pass();

  EXPECT_THROW(pass->start_over(), std::logic_error);
}

TEST_P(Passes, with_a_fault_cannot_start_over) {
  foreign_program().execute((database(), "DROP TABLE eta_camera_trigger"));
  const auto pass = a_pass(Pass_Scope::Mode::read_only);
  EXPECT_THROW(eta_cameras(), Database_Error);

  EXPECT_THROW(pass->start_over(), Database_Error);
}

TEST_P(Passes, are_committed_by_the_clean_up_of_the_detection_records) {
  const auto pass = a_pass();
  add_subscription(10, "a", add_trigger(7));
  add_eta_camera(10, find(7));

  clean_up();

  EXPECT_EQ(foreign_program().count("trigger_record"), 1U);
  EXPECT_EQ(foreign_program().count("subscription_trigger"), 1U);
  EXPECT_EQ(foreign_program().count("eta_camera_trigger"), 1U);
}

TEST_P(Passes, read_the_state_that_they_committed) {
  const auto pass = a_pass();
  add_subscription(10, "a", add_trigger(7));
  clean_up();

  foreign_program().execute("DELETE FROM subscription");
  foreign_program().execute("DELETE FROM trigger_record");

  EXPECT_THAT(texts_of(subscriptions()),
              ElementsAre("subscription 1 \"a\" camera 10 topic \"a\" category none tags [] "
                          "cameras [] triggers [7]",
                          "subscription 100 \"subscription\" camera none topic none category none "
                          "tags [] cameras [] triggers []"));
  EXPECT_NE(find(7), nullptr);
}

TEST_P(Passes, commit_at_their_end_what_did_not_come_to_the_clean_up) {
  const auto pass = a_pass();
  add_trigger(7);

  pass->end();

  EXPECT_EQ(foreign_program().count("trigger_record"), 1U);
  EXPECT_THAT(pass->changes().triggers.added, ElementsAre(7));
}

TEST_P(Passes, clear_away_what_another_program_left_of_a_trigger) {
  given_two_triggers_at_work();
  foreign_program().execute("DELETE FROM trigger_record WHERE id = 7");
  foreign_program().execute("INSERT INTO trigger_schedule (record_id, linked_id) VALUES (8, 99)");
  foreign_program().execute(
      "INSERT INTO trigger_source (trigger_id, position, type) VALUES (9, 0, 1)");
  const auto pass = a_pass();

  EXPECT_THAT(texts_of(subscriptions()), Not(Contains(HasSubstr("7"))));
  EXPECT_EQ(find(8)->schedules.size(), 0U);
  clean_up();

  EXPECT_EQ(foreign_program().query("SELECT trigger_id FROM trigger_source WHERE trigger_id <> 8"),
            Rows());
  EXPECT_EQ(foreign_program().count("trigger_schedule"), 0U);
  EXPECT_EQ(foreign_program().count("subscription_trigger"), 2U);
}

TEST_P(Passes, add_a_trigger_anew_whose_record_another_program_deleted) {
  given_two_triggers_at_work();
  foreign_program().execute("DELETE FROM trigger_record WHERE id = 7");
  const auto pass = a_pass();

  add_subscription(10, "b", add_trigger(7));
  clean_up();
  pass->end();

  EXPECT_EQ(foreign_program().count("trigger_record"), 2U);
  EXPECT_EQ(pass->fault(), std::nullopt);
}

TEST_P(Passes, keep_nothing_when_nobody_ends_them) {
  database();
  const auto before = stored();
  {
    const auto pass = a_pass();
    add_subscription(10, "a", add_trigger(7));
  }

  EXPECT_EQ(stored(), before);
  const auto next = a_pass();
  EXPECT_EQ(find(7), nullptr);
}

TEST_P(Passes, tell_what_they_would_write_and_roll_it_back) {
  given_two_triggers_at_work();
  const auto before = stored();
  {
    const auto pass = a_pass(Pass_Scope::Mode::roll_back);
    add_subscription(10, "b", add_trigger(9));
    repository().triggers().delete_all_except({7, 9});
    clean_up();

    EXPECT_EQ(stored(), before);
    EXPECT_EQ(subscriptions().size(), 4U);  // as a pass that commits would see it
    pass->end();
    EXPECT_THAT(pass->changes().triggers.added, ElementsAre(9));
    EXPECT_THAT(pass->changes().triggers.deleted, ElementsAre(8));
    EXPECT_THAT(pass->changes().subscriptions.added, ElementsAre(3));
    EXPECT_THAT(link_texts(pass->changes().subscription_links.added), ElementsAre("3-9"));
    EXPECT_THAT(link_texts(pass->changes().subscription_links.deleted), ElementsAre("1-8", "2-8"));
    EXPECT_THAT(link_texts(pass->changes().eta_camera_links.deleted), ElementsAre("1-8", "2-8"));
    pass->store({{"{}"}, {"{}"}}, {10});
  }

  EXPECT_EQ(stored(), before);
  const auto next = a_pass();
  EXPECT_EQ(find(9), nullptr);
  EXPECT_NE(find(8), nullptr);
}

TEST_P(Passes, that_only_read_store_nothing_and_wait_for_nobody) {
  given_two_triggers_at_work();
  const auto before = stored();
  const auto impatient = open_again(std::chrono::milliseconds(0));
  const auto writing = a_pass();
  add_trigger(9);
  std::thread([&] {
    Pass_Scope reading(impatient, server_id, Pass_Scope::Mode::read_only);
    const auto others = make_repository(impatient);
    EXPECT_NE(others->triggers().find_by_id(7), nullptr);
    EXPECT_EQ(others->triggers().find_by_id(9), nullptr);
    EXPECT_TRUE(others->triggers().add(a_trigger(10)));
    others->eta_cameras().delete_stale();
    reading.end();
    reading.store({{"{}"}, {"{}"}}, {10, 11});
  }).join();

  EXPECT_EQ(stored(), before);
}

TEST_P(Passes, that_only_read_see_one_state) {
  given_two_triggers_at_work();
  const auto reading = a_pass(Pass_Scope::Mode::read_only);
  EXPECT_NE(find(7), nullptr);

  foreign_program().execute("DELETE FROM subscription_trigger");
  foreign_program().execute("DELETE FROM eta_camera_trigger");

  EXPECT_THAT(subscription(1)->trigger_ids(), ElementsAre(7, 8));
  EXPECT_EQ(eta_cameras().at(0)->triggers.size(), 2U);
}

TEST_P(Passes, tell_what_they_changed) {
  given_two_triggers_at_work();
  const auto pass = a_pass();
  add_subscription(11, "b", add_trigger(largest_id));
  add_subscription(10, "b", find(largest_id));
  const auto renamed = find(7);
  renamed->name = "renamed";
  ASSERT_TRUE(repository().triggers().update(renamed));
  for (const auto& record : subscriptions()) {
    if (record->id == 2 || record->id == 100) {
      record->add_trigger(find(largest_id));
      ASSERT_TRUE(repository().metadata_event_subscriptions().update(record));
    }
  }
  const auto emptied = subscription(1);
  emptied->remove_trigger(find(7));
  ASSERT_TRUE(repository().metadata_event_subscriptions().update(emptied));
  const auto unwatched = eta_cameras().at(0);
  unwatched->remove_trigger(find(7));
  ASSERT_TRUE(repository().eta_cameras().update(unwatched));

  repository().triggers().delete_all_except({7, largest_id});
  clean_up();

  const Changes& changes = pass->changes();
  EXPECT_THAT(changes.triggers.added, ElementsAre(largest_id));
  EXPECT_THAT(changes.triggers.updated, ElementsAre(7));
  EXPECT_THAT(changes.triggers.deleted, ElementsAre(8));
  EXPECT_THAT(changes.subscriptions.added, ElementsAre(3, 4));
  EXPECT_THAT(changes.subscriptions.updated, IsEmpty());
  EXPECT_THAT(changes.subscriptions.deleted, ElementsAre(1));
  EXPECT_THAT(link_texts(changes.subscription_links.added),
              ElementsAre("2-18446744073709551615", "3-18446744073709551615",
                          "4-18446744073709551615", "100-18446744073709551615"));
  EXPECT_THAT(link_texts(changes.subscription_links.deleted), ElementsAre("1-7", "1-8", "2-8"));
  EXPECT_THAT(changes.eta_cameras.added, IsEmpty());
  EXPECT_THAT(changes.eta_cameras.deleted, ElementsAre(1));
  EXPECT_THAT(link_texts(changes.eta_camera_links.added), IsEmpty());
  EXPECT_THAT(link_texts(changes.eta_camera_links.deleted), ElementsAre("1-7", "1-8", "2-8"));
}

TEST_P(Passes, change_nothing_where_what_went_came_back) {
  given_two_triggers_at_work();
  const auto before = stored();
  const auto pass = a_pass();
  const auto& leaving = find(7);
  for (const auto& record : subscriptions()) {
    if (record->camera) {
      record->remove_trigger(leaving);
      ASSERT_TRUE(repository().metadata_event_subscriptions().update(record));
      record->add_trigger(leaving);
      ASSERT_TRUE(repository().metadata_event_subscriptions().update(record));
    } else {
      record->add_trigger(leaving);
      ASSERT_TRUE(repository().metadata_event_subscriptions().update(record));
      record->remove_trigger(leaving);
      ASSERT_TRUE(repository().metadata_event_subscriptions().update(record));
    }
  }
  for (const auto& record : eta_cameras()) {
    record->remove_trigger(leaving);
    ASSERT_TRUE(repository().eta_cameras().update(record));
    record->add_trigger(leaving);
    ASSERT_TRUE(repository().eta_cameras().update(record));
  }
  const auto renamed = find(8);
  const std::string name = renamed->name;
  renamed->name = "for a moment";
  ASSERT_TRUE(repository().triggers().update(renamed));
  renamed->name = name;
  ASSERT_TRUE(repository().triggers().update(renamed));
  add_subscription(10, "for a moment", add_trigger(9));
  repository().triggers().delete_all_except({7, 8});
  clean_up();
  pass->end();

  EXPECT_TRUE(pass->changes().empty());
  EXPECT_THAT(pass->changes().triggers.updated, IsEmpty());
  EXPECT_THAT(pass->pending_cameras(), IsEmpty());
  EXPECT_EQ(stored(), before);
}

TEST_P(Passes, of_an_unchanged_site_change_nothing) {
  given_two_triggers_at_work();
  const auto before = stored();
  const auto pass = a_pass();
  for (const auto& record : subscriptions()) {
    ASSERT_TRUE(repository().metadata_event_subscriptions().update(record));
  }
  for (const auto& record : eta_cameras()) {
    ASSERT_TRUE(repository().eta_cameras().update(record));
  }
  ASSERT_TRUE(repository().triggers().update(find(7)));
  repository().triggers().delete_all_except({7, 8});
  clean_up();
  pass->end();

  EXPECT_TRUE(pass->changes().empty());
  EXPECT_THAT(pass->pending_cameras(), IsEmpty());
  pass->store({}, {});
  EXPECT_EQ(stored(), before);
}

TEST_P(Passes, keep_the_cameras_whose_subscriptions_changed_until_they_are_reconciled) {
  given_two_triggers_at_work();
  {
    const auto cut_short = a_pass();
    const auto left = subscription(2);
    left->remove_trigger(find(8));
    ASSERT_TRUE(repository().metadata_event_subscriptions().update(left));
    cut_short->end();
  }
  {
    const auto next = a_pass();
    add_subscription(10, "b", find(7));
    clean_up();
    next->end();
    EXPECT_THAT(next->pending_cameras(), ElementsAre(10, 11));
    next->store({}, {11, 4711});
    EXPECT_THAT(next->pending_cameras(), ElementsAre(10));
  }
  const auto last = a_pass();
  EXPECT_THAT(last->pending_cameras(), ElementsAre(10));
}

TEST_P(Passes, note_the_cameras_of_subscriptions_alone) {
  given_two_triggers_at_work();
  const auto pass = a_pass();
  for (const auto& record : eta_cameras()) {
    record->remove_trigger(find(8));
    ASSERT_TRUE(repository().eta_cameras().update(record));
  }
  const auto generic = subscription(100);
  generic->add_trigger(find(8));
  ASSERT_TRUE(repository().metadata_event_subscriptions().update(generic));
  clean_up();
  pass->end();

  EXPECT_THAT(pass->pending_cameras(), IsEmpty());
}

TEST_P(Passes, note_the_cameras_of_deleted_subscriptions_and_not_those_of_deleted_triggers) {
  given_two_triggers_at_work();
  const auto pass = a_pass();
  const auto emptied = subscription(1);
  emptied->remove_trigger(find(7));
  ASSERT_TRUE(repository().metadata_event_subscriptions().update(emptied));
  repository().triggers().delete_all_except({7});
  clean_up();
  pass->end();

  EXPECT_THAT(pass->changes().subscriptions.deleted, ElementsAre(1));
  EXPECT_THAT(pass->pending_cameras(), ElementsAre(10));
}

TEST_P(Passes, note_no_camera_of_links_that_went_with_their_trigger) {
  given_two_triggers_at_work();
  const auto pass = a_pass();
  const auto joined = subscription(1);
  joined->add_trigger(add_trigger(9));
  ASSERT_TRUE(repository().metadata_event_subscriptions().update(joined));
  repository().triggers().delete_all_except({8});
  clean_up();
  pass->end();

  EXPECT_EQ(pass->changes().subscription_links.deleted.size(), 2U);
  EXPECT_THAT(pass->changes().subscription_links.added, IsEmpty());
  EXPECT_THAT(pass->pending_cameras(), IsEmpty());
}

TEST_P(Passes, note_the_cameras_of_a_trigger_that_left_before_it_was_deleted) {
  given_two_triggers_at_work();
  const auto pass = a_pass();
  const auto left = subscription(2);
  left->remove_trigger(find(8));
  ASSERT_TRUE(repository().metadata_event_subscriptions().update(left));
  repository().triggers().delete_all_except({7});
  clean_up();
  pass->end();

  EXPECT_EQ(pass->changes().subscription_links.deleted.size(), 2U);
  EXPECT_THAT(pass->pending_cameras(), ElementsAre(11));
}

TEST_P(Passes, note_no_camera_of_links_whose_trigger_another_program_deleted) {
  given_two_triggers_at_work();
  foreign_program().execute("DELETE FROM trigger_record WHERE id = 7");
  const auto pass = a_pass();
  clean_up();
  pass->end();

  EXPECT_EQ(pass->changes().subscription_links.deleted.size(), 2U);
  EXPECT_THAT(pass->pending_cameras(), IsEmpty());
}

TEST_P(Passes, note_the_cameras_of_what_a_pass_had_changed_that_never_came_to_its_clean_up) {
  given_two_triggers_at_work();
  {
    const auto failed = a_pass();
    const auto left = subscription(2);
    left->remove_trigger(find(8));
    ASSERT_TRUE(repository().metadata_event_subscriptions().update(left));
    repository().triggers().delete_all_except({8});
    failed->end();
  }
  const auto next = a_pass();

  EXPECT_THAT(next->pending_cameras(), ElementsAre(11));
}

TEST_P(Passes, that_are_rolled_back_note_no_camera) {
  given_two_triggers_at_work();
  {
    const auto rolled_back = a_pass(Pass_Scope::Mode::roll_back);
    add_subscription(10, "b", find(7));
    clean_up();
    rolled_back->end();
    EXPECT_EQ(rolled_back->changes().subscriptions.added.size(), 1U);
  }
  const auto next = a_pass();

  EXPECT_THAT(next->pending_cameras(), IsEmpty());
}

TEST_P(Passes, give_the_documents_back_as_they_were_stored) {
  const std::string config = "{ \"triggers\" : [ ] ,\r\n\t\"x\": \"\xC3\xA4\" }\n\n";
  const std::string with_zero("{\"triggerMapping\": []}\0 ", 24);
  const std::string mapping = GetParam().takes_any_bytes ? with_zero : "{\"triggerMapping\": []}";
  {
    const auto first = a_pass();
    EXPECT_EQ(first->documents().config, std::nullopt);
    EXPECT_EQ(first->documents().mapping, std::nullopt);
    first->end();
    first->store({config, std::nullopt}, {});
  }
  {
    const auto second = a_pass();
    EXPECT_EQ(second->documents().config, config);
    EXPECT_EQ(second->documents().mapping, std::nullopt);
    second->end();
    second->store({std::nullopt, mapping}, {});
    EXPECT_EQ(second->documents().mapping, std::nullopt);  // as it was at the beginning
  }
  close();
  EXPECT_EQ(read_documents(database()).config, config);
  EXPECT_EQ(read_documents(database()).mapping, mapping);
  const auto third = a_pass();
  third->end();
  third->store({"shorter", {}}, {});
  EXPECT_EQ(read_documents(database()).config, "shorter");
}

TEST_P(Passes, that_only_read_give_the_documents_back_as_they_were_when_they_began) {
  {
    const auto pass = a_pass();
    pass->end();
    pass->store({"config", "mapping"}, {});
  }
  const auto reading = a_pass(Pass_Scope::Mode::read_only);

  foreign_program().execute("DELETE FROM document");

  EXPECT_EQ(reading->mapping(), "mapping");
  EXPECT_EQ(reading->documents().config, "config");
  EXPECT_EQ(reading->documents().mapping, "mapping");
}

TEST_P(Passes, that_only_read_fail_when_documents_are_asked_for_that_cannot_be_read) {
  given_two_triggers_at_work();
  foreign_program().execute("DROP TABLE document");
  const auto reading = a_pass(Pass_Scope::Mode::read_only);
  EXPECT_EQ(reading->fault(), std::nullopt);

  EXPECT_THROW(reading->mapping(), Database_Error);

  EXPECT_NE(reading->fault(), std::nullopt);
  EXPECT_THROW(reading->documents(), Database_Error);
}

TEST_P(Passes, make_the_database_their_server_s_once_they_stored_something) {
  EXPECT_EQ(database()->owner(), std::nullopt);
  { const Pass_Scope unused(database(), 5); }
  {
    Pass_Scope looked_only(database(), 5);
    repository().triggers().delete_all();
    clean_up();
    looked_only.end();
    looked_only.store({}, {});
  }
  {
    Pass_Scope rolled_back(database(), 5, Pass_Scope::Mode::roll_back);
    add_trigger(7);
    clean_up();
    rolled_back.end();
    rolled_back.store({"{}", "{}"}, {});
  }
  EXPECT_EQ(database()->owner(), std::nullopt);

  {
    Pass_Scope pass(database(), largest_id);
    add_trigger(7);
    clean_up();
  }

  EXPECT_EQ(database()->owner(), largest_id);
  close();
  EXPECT_EQ(database()->owner(), largest_id);
}

TEST_P(Passes, make_the_database_their_server_s_when_they_store_documents) {
  {
    Pass_Scope pass(database(), 5);
    pass.end();
    pass.store({"{}", std::nullopt}, {});
  }

  EXPECT_EQ(database()->owner(), 5U);
}

TEST_P(Passes, of_another_server_are_refused) {
  {
    Pass_Scope pass(database(), largest_id);
    add_trigger(7);
    pass.end();
  }
  const std::string refusal = fmt::format(
      "database {}: it belongs to server 18446744073709551615, not to server 1", location());

  for (const auto mode :
       {Pass_Scope::Mode::commit, Pass_Scope::Mode::roll_back, Pass_Scope::Mode::read_only}) {
    try {
      Pass_Scope pass(database(), 1, mode);
      FAIL() << "begun";
    } catch (const Database_Error& error) {
      EXPECT_EQ(error.what(), refusal);
    }
  }
  try {
    database()->require_owner(1);
    FAIL() << "accepted";
  } catch (const Database_Error& error) {
    EXPECT_EQ(error.what(), refusal);
  }
  EXPECT_NO_THROW(database()->require_owner(largest_id));
  EXPECT_NO_THROW(Pass_Scope(database(), largest_id));  // nobody keeps the lock
}

TEST_P(Passes, are_one_at_a_time_on_a_thread_whatever_the_database) {
  Database_Fixture elsewhere(GetParam());
  const auto other = elsewhere.database();
  const auto other_repository = make_repository(other);
  const auto complaint_of = [](const auto& action) -> std::string {
    try {
      action();
    } catch (const std::logic_error& error) {
      return error.what();
    }
    return "none";
  };
  const std::string refusal = "a pass is open on this thread already";
  {
    const auto pass = a_pass();
    add_trigger(7);

    EXPECT_EQ(complaint_of([&] { Pass_Scope(other, server_id); }), refusal);
    EXPECT_EQ(complaint_of([&] { Pass_Scope(database(), server_id); }), refusal);
    EXPECT_EQ(complaint_of([&] { other_repository->triggers().find_by_id(7); }), refusal);
    EXPECT_EQ(complaint_of([&] { other_repository->triggers().add(a_trigger(7)); }), refusal);
    EXPECT_EQ(complaint_of([&] { other->owner(); }), refusal);
    std::thread([&] { EXPECT_EQ(other_repository->triggers().find_by_id(7), nullptr); }).join();

    EXPECT_NE(find(7), nullptr);
    clean_up();
    EXPECT_EQ(pass->fault(), std::nullopt);
  }
  EXPECT_EQ(foreign_program().count("trigger_record"), 1U);
  EXPECT_EQ(elsewhere.foreign_program().count("trigger_record"), 0U);
  EXPECT_EQ(complaint_of([&] { Pass_Scope(other, server_id); }), "none");
}

TEST_P(Passes, read_a_capability_text_once_for_all_cameras_that_share_it) {
  site.given_camera(10).with_topic("a");
  site.given_camera(11).with_topic("a");
  site.given_camera(12).with_topic("b");
  const auto pass = a_pass();
  const auto cameras = repository().cameras().get_cameras_matching_tags({});
  ASSERT_EQ(cameras.size(), 3U);

  EXPECT_EQ(&cameras[0]->capabilities.tree(), &cameras[1]->capabilities.tree());
  EXPECT_NE(&cameras[0]->capabilities.tree(), &cameras[2]->capabilities.tree());
  EXPECT_FALSE(cameras[2]->capabilities.tree().empty());
}

TEST_P(Passes, leave_single_operations_to_commit_themselves) {
  add_trigger(7);
  EXPECT_EQ(foreign_program().count("trigger_record"), 1U);
  add_subscription(10, "a", find(7));
  EXPECT_EQ(foreign_program().count("subscription_trigger"), 1U);
  const auto record = subscription(1);
  record->remove_trigger(find(7));
  EXPECT_TRUE(repository().metadata_event_subscriptions().update(record));
  EXPECT_EQ(foreign_program().count("subscription_trigger"), 0U);
  repository().metadata_event_subscriptions().delete_stale();
  EXPECT_EQ(foreign_program().count("subscription"), 1U);
  EXPECT_EQ(database()->owner(), std::nullopt);
}

TEST_P(Passes, leave_nothing_kept_of_a_single_operation_that_cannot_begin) {
  database();
  const auto impatient = open_again(std::chrono::milliseconds(0));
  make_repository(impatient)->triggers().add(a_trigger(7));
  EXPECT_EQ(impatient->kept(), Kept::everything);
  const auto pass = a_pass();

  std::thread([&impatient] {
    EXPECT_THROW(make_repository(impatient)->triggers().add(a_trigger(8)), Database_Error);
  }).join();

  EXPECT_EQ(impatient->kept(), Kept::nothing);
}

TEST_P(Passes, see_an_inventory_that_is_stored_before_them_and_keep_what_is_not_named) {
  given_two_triggers_at_work();
  site.given_camera(10).named("renamed").with_tag("new");
  Site_Builder one_more;
  one_more.given_camera(12).named("twelve");
  one_more.given_object_type("vehicle", {"car", "truck"});
  site.store_in(database());
  one_more.store_in(database());

  const auto pass = a_pass();
  EXPECT_THAT(texts_of(repository().cameras().get_cameras_matching_tags({})),
              ElementsAre("camera 10 \"renamed\" tags [new]", "camera 11 \"camera\" tags []",
                          "camera 12 \"twelve\" tags []"));
  EXPECT_THAT(subscription(1)->trigger_ids(), ElementsAre(7, 8));
  EXPECT_EQ(load_object_types(database()),
            (std::map<std::string, std::set<std::string>>{{"vehicle", {"car", "truck"}}}));
  const Inventory_References references = load_inventory_references(database());
  EXPECT_THAT(references.camera_ids, ElementsAre(10, 11, 12));
  EXPECT_THAT(references.topic_subscription_ids, ElementsAre(1, 2));
}

}  // namespace
}  // namespace kuv::test
