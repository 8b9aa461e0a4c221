// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "embedded_server/persistent/database_test.h"
#include "embedded_server/persistent/watched_files.h"
#include "support/log_capture.h"
#include "vemora/embedded_server/host/trigger_host.h"

namespace kuv::test {
namespace {

using Status = Pass_Outcome::Status;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

/// What a host says of passes whose commit a disk failed.
class Failed_Commits : public testing::Test, public Database_Fixture {
 protected:
  Failed_Commits() : Database_Fixture({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {
    site.given_server(server_id);
    site.given_camera(10).with_topic("a");
    site.store_in(database());
  }

  Pass_Outcome apply() {
    const Json_Document config(
        R"({"triggers": [{"id": 7, "name": "seven", "tags": {},
            "sources": [{"type": "onvif-metadata", "onvifTopic": "a"}]}]})");
    return Trigger_Host(database(), server_id).apply(config, nullptr);
  }

  Watched_Files files;
};

TEST_F(Failed_Commits, leave_open_what_changed_where_that_cannot_be_known) {
  files.fail_syncs();

  const Pass_Outcome outcome = apply();

  EXPECT_EQ(outcome.status, Status::failed);
  EXPECT_FALSE(outcome.changes_are_known);
  EXPECT_THAT(outcome.remarks,
              ElementsAre(EndsWith("; it is not known whether what the pass wrote was kept")));
  EXPECT_THAT(outcome.reconciled, IsEmpty());
  EXPECT_EQ(outcome.state, std::nullopt);
}

TEST_F(Failed_Commits, change_nothing_where_that_is_known) {
  files.fail_syncs(1);

  const Pass_Outcome outcome = apply();

  EXPECT_EQ(outcome.status, Status::failed);
  EXPECT_TRUE(outcome.changes_are_known);
  EXPECT_THAT(outcome.remarks, ElementsAre(EndsWith("; nothing that the pass wrote was kept")));
  EXPECT_EQ(foreign_program().count("trigger_record"), 0U);
}

TEST_F(Failed_Commits, are_made_good_by_the_same_pass_again) {
  files.fail_syncs();
  EXPECT_EQ(apply().status, Status::failed);
  files.heal();

  const Pass_Outcome outcome = apply();

  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_TRUE(outcome.changes_are_known);
  EXPECT_THAT(outcome.reconciled, ElementsAre(10));
}

}  // namespace
}  // namespace kuv::test
