// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/prune.h"

#include <thread>

#include "embedded_server/persistent/database_test.h"
#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/stored_inventory.h"

namespace kuv::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A site of two cameras with a subscription, a detection record and a pending reconciliation each.
class Prune_Test : public Database_Test {
 protected:
  Prune_Test() {
    site.given_server(server_id);
    site.given_server(2).tags["role"];
    site.given_camera(10).with_tag("area", "gate").with_topic("a");
    site.given_camera(11).with_tag("area", "dock").with_topic("b");
    site.given_schedule(1);
    site.given_category(1, "access");
    site.given_generic_subscription(3).with_tag("door").in_category(1).on_camera(10);
    site.given_object_type("vehicle", {"car"});
    database();
    for (const char* const statement :
         {"INSERT INTO trigger_record VALUES (7, 'gate')",
          "INSERT INTO trigger_schedule VALUES (7, 1)",
          "INSERT INTO subscription VALUES (100, 'a', NULL, 'a', 10)",
          "INSERT INTO subscription VALUES (101, 'b', NULL, 'b', 11)",
          "INSERT INTO subscription_trigger VALUES (3, 7), (100, 7), (101, 7)",
          "INSERT INTO eta_camera VALUES (200, 10), (201, 11)",
          "INSERT INTO eta_camera_trigger VALUES (200, 7), (201, 7)",
          "INSERT INTO pending_camera VALUES (10), (11)"}) {
      foreign_program().execute(statement);
    }
  }

  Pruned_Records prune(const Inventory& inventory, const Permit_Deletions& permit = permit_all) {
    return prune_to_inventory(
        database(), server_id, [&inventory] { return &inventory; }, permit);
  }

  static bool permit_all(const Deletions&) { return true; }

  Inventory without_camera_11() const {
    Inventory inventory = site.inventory();
    inventory.cameras.pop_back();
    return inventory;
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, Prune_Test, testing::ValuesIn(database_engines()),
                         name_of_engine);

TEST_P(Prune_Test, asks_with_how_much_is_deleted_of_how_much_is_stored) {
  Deletions asked;
  prune(Inventory(), [&asked](const Deletions& deletions) {
    asked = deletions;
    return true;
  });
  const auto counts = [](const Deletions::Of& of) { return std::make_pair(of.deleted, of.stored); };
  const auto pair = [](std::size_t deleted, std::size_t stored) {
    return std::make_pair(deleted, stored);
  };
  EXPECT_EQ(counts(asked.cameras), pair(2, 2));
  EXPECT_EQ(counts(asked.topic_subscriptions), pair(2, 2));
  EXPECT_EQ(counts(asked.servers), pair(1, 2));
  EXPECT_EQ(counts(asked.schedules), pair(1, 1));
  EXPECT_EQ(counts(asked.categories), pair(1, 1));
  EXPECT_EQ(counts(asked.generic_subscriptions), pair(1, 1));
  EXPECT_EQ(counts(asked.object_types), pair(1, 1));
  EXPECT_EQ(counts(asked.triggers), pair(0, 0));
}

TEST_P(Prune_Test, leaves_no_row_of_what_the_inventory_does_not_name) {
  const Pruned_Records removed = prune(Inventory());
  EXPECT_EQ(removed.topic_subscriptions, 2U);
  EXPECT_EQ(removed.eta_cameras, 2U);
  ASSERT_EQ(removed.cameras.size(), 2U);
  EXPECT_EQ(removed.cameras[1].id, 11U);
  EXPECT_EQ(removed.cameras[1].topic_subscriptions, 1U);
  EXPECT_TRUE(removed.cameras[1].has_detection);
  EXPECT_THAT(removed.object_types, ElementsAre("vehicle"));
  ASSERT_EQ(removed.kept_servers.size(), 1U);
  EXPECT_EQ(removed.kept_servers[0].id, server_id);
  std::vector<std::string> left;
  for (const auto& [table, rows] : foreign_program().everything()) {
    left.push_back(table + " " + std::to_string(rows.size()));
  }
  EXPECT_THAT(left, ElementsAre("server 1", "site 1", "trigger_record 1"));
}

TEST_P(Prune_Test, leaves_what_the_inventory_names_as_it_is) {
  const auto before = foreign_program().everything();
  EXPECT_TRUE(prune(site.inventory(), [](const Deletions&) {
                ADD_FAILURE() << "nothing is deleted";
                return true;
              }).cameras.empty());
  EXPECT_EQ(foreign_program().everything(), before);
}

TEST_P(Prune_Test, changes_nothing_that_is_not_permitted) {
  const auto before = foreign_program().everything();
  const Pruned_Records removed = prune(without_camera_11(), [](const Deletions&) { return false; });
  EXPECT_TRUE(removed.cameras.empty());
  EXPECT_EQ(foreign_program().everything(), before);
}

TEST_P(Prune_Test, changes_nothing_without_an_inventory) {
  const auto before = foreign_program().everything();
  prune_to_inventory(
      database(), server_id, [] { return nullptr; }, permit_all);
  EXPECT_EQ(foreign_program().everything(), before);
}

/// The fault comes when everything is removed already.
TEST_P(Prune_Test, takes_everything_back_after_a_fault) {
  const auto before = foreign_program().everything();
  Inventory inventory = without_camera_11();
  inventory.cameras[0].capabilities = std::string(2000, '[') + std::string(2000, ']');
  try {
    prune(inventory);
    ADD_FAILURE() << "capabilities that are nested too deeply were stored";
  } catch (const Database_Error& error) {
    EXPECT_THAT(error.what(), HasSubstr("nested more than"));
  }
  EXPECT_EQ(database()->kept(), Kept::nothing);
  EXPECT_EQ(foreign_program().everything(), before);
}

TEST_P(Prune_Test, removes_what_earlier_cameras_have_left) {
  for (const char* const statement :
       {"INSERT INTO subscription VALUES (102, 'c', NULL, 'c', 99)",
        "INSERT INTO subscription_trigger VALUES (102, 7)",
        "INSERT INTO eta_camera VALUES (202, 99)", "INSERT INTO eta_camera_trigger VALUES (202, 7)",
        "INSERT INTO pending_camera VALUES (99)",
        "INSERT INTO camera_tag VALUES (99, 'area', NULL)",
        "INSERT INTO subscription_camera VALUES (100, 99)",
        "INSERT INTO trigger_schedule VALUES (7, 99)"}) {
    foreign_program().execute(statement);
  }
  const Pruned_Records removed = prune(site.inventory());
  EXPECT_THAT(removed.cameras, IsEmpty());
  EXPECT_EQ(removed.topic_subscriptions, 1U);
  EXPECT_EQ(removed.eta_cameras, 1U);
  EXPECT_EQ(foreign_program().count("subscription"), 3U);
  EXPECT_EQ(foreign_program().count("subscription_trigger"), 3U);
  EXPECT_EQ(foreign_program().count("subscription_camera"), 1U);
  EXPECT_EQ(foreign_program().count("eta_camera"), 2U);
  EXPECT_EQ(foreign_program().count("eta_camera_trigger"), 2U);
  EXPECT_EQ(foreign_program().count("pending_camera"), 2U);
  EXPECT_EQ(foreign_program().count("camera_tag"), 2U);
  EXPECT_EQ(foreign_program().count("trigger_schedule"), 1U);
}

TEST_P(Prune_Test, leaves_what_passes_tidy_up_to_them) {
  foreign_program().execute("INSERT INTO subscription VALUES (103, 'half', NULL, 'd', NULL)");
  prune(site.inventory());
  EXPECT_EQ(foreign_program().count("subscription"), 4U);
}

TEST_P(Prune_Test, waits_for_passes) {
  const auto before = foreign_program().everything();
  const auto elsewhere = open_again(std::chrono::milliseconds(0));
  const Inventory inventory = without_camera_11();
  std::string complaint;
  {
    const Pass_Scope pass(database(), server_id);
    std::thread([&] {
      try {
        prune_to_inventory(
            elsewhere, server_id, [&inventory] { return &inventory; }, permit_all);
      } catch (const Database_Error& error) {
        complaint = error.what();
      }
    }).join();
  }
  EXPECT_THAT(complaint, HasSubstr("another process is at work on it"));
  EXPECT_EQ(foreign_program().everything(), before);
}

TEST_P(Prune_Test, keeps_the_server_that_the_database_belongs_to) {
  foreign_program().execute("UPDATE site SET server_id = 2");
  const Pruned_Records removed = prune(Inventory());
  EXPECT_THAT(removed.servers, IsEmpty());
  EXPECT_EQ(removed.kept_servers.size(), 2U);
  EXPECT_EQ(load_servers(database()).size(), 2U);
}

}  // namespace
}  // namespace kuv::test
