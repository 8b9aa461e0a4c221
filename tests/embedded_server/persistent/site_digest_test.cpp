// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/site_digest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "embedded_server/persistent/database_test.h"
#include "support/log_capture.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::test {
namespace {

/// A site with a row in every table.
class Site_Digest_Test : public Database_Test {
 protected:
  Site_Digest_Test() {
    site.given_server(server_id).tags["site"].value = "north";
    site.given_schedule(1);
    site.given_category(1, "access");
    site.given_object_type("vehicle", {"car"});
    site.given_camera(10).with_tag("area").with_topic("a").detecting_objects();
    site.given_generic_subscription(3).with_tag("door").in_category(1).on_camera(10);
    Trigger_Host host(database(), server_id);
    const Json_Document mapping(R"({"triggerMapping": []})");
    EXPECT_EQ(host.apply(Json_Document(config), &mapping).status, Pass_Outcome::Status::done);
    foreign_program().execute("INSERT INTO pending_camera VALUES (10)");
  }

  std::string digest() { return digest_of_site(database()); }

  const std::string config = R"({"triggers": [
      {"id": 7, "name": "seven", "tags": {}, "scheduleIds": [1], "sources": [
        {"type": "onvif-metadata", "onvifTopic": "a"},
        {"type": "object-detection", "searchItem": {"type": "car"}},
        {"type": "metadata-event"}]}]})";
  Log_Capture log;
};

INSTANTIATE_TEST_SUITE_P(Engines, Site_Digest_Test, testing::ValuesIn(database_engines()),
                         name_of_engine);

TEST_P(Site_Digest_Test, stays_as_long_as_nothing_changes) {
  const std::string before = digest();
  EXPECT_EQ(before.size(), 64U);
  EXPECT_EQ(digest(), before);
  EXPECT_EQ(digest_of_site(open_again()), before);
}

/// Whoever adds a table has to say whether it decides what a pass does.
TEST_P(Site_Digest_Test, differs_when_a_row_of_any_table_is_gone) {
  const std::set<std::string> of_no_concern{"site", "id_allocation", "history_entry",
                                            "history_text"};
  std::string before = digest();
  for (const std::string& table : foreign_program().tables()) {
    if (of_no_concern.count(table) != 0) {
      continue;
    }
    ASSERT_GT(foreign_program().count(table), 0U) << table;
    foreign_program().execute("DELETE FROM " + table);
    const std::string after = digest();
    EXPECT_NE(after, before) << table;
    before = after;
  }
}

TEST_P(Site_Digest_Test, differs_when_a_value_does) {
  std::string before = digest();
  for (const char* const change :
       {"UPDATE camera SET name = 'another'", "UPDATE camera_tag SET value = ''",
        "UPDATE camera_tag SET value = 'a'",
        "UPDATE trigger_source SET onvif_topic = 'b' WHERE type = 0",
        "UPDATE subscription SET name = 'b' WHERE id = 3", "UPDATE schedule SET id = 2",
        "UPDATE eta_camera SET id = 4711"}) {
    foreign_program().execute(change);
    const std::string after = digest();
    EXPECT_NE(after, before) << change;
    before = after;
  }
}

TEST_P(Site_Digest_Test, is_of_what_is_stored_in_the_midst_of_a_pass) {
  const std::string before = digest();
  Pass_Scope pass(database(), server_id);
  make_repository(database())->triggers().delete_all();
  EXPECT_EQ(digest(), before);
}

}  // namespace
}  // namespace kuv::test
