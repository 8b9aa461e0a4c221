// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// What explain costs where a trigger has very many sources.

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "embedded_server/host/counted_allocations.h"
#include "embedded_server/persistent/database_test.h"
#include "support/log_capture.h"
#include "vemora/embedded_server/host/trigger_host.h"
#include "vemora/operations/explain/explain.h"

namespace kuv::test {
namespace {

class Explained_Triggers : public testing::Test, public Database_Fixture {
 protected:
  Explained_Triggers()
      : Database_Fixture({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {
    site.given_server(server_id);
    site.given_camera(10).with_topic("tns1:VideoSource/MotionAlarm");
    site.store_in(database());
  }

  /// One trigger with so many topics, none of which the camera supports.
  void apply_topics(std::size_t count) {
    std::string sources;
    for (std::size_t number = 0; number < count; ++number) {
      sources += (number == 0 ? "" : ",") +
                 (R"({"type": "onvif-metadata", "onvifTopic": "tns1:UserAlarm/Vendor/Rule)" +
                  std::to_string(number) + "\"}");
    }
    Trigger_Host(database(), server_id)
        .apply(Json_Document(R"({"triggers": [{"id": 7, "name": "", "tags": {}, "sources": [)" +
                             sources + "]}]}"),
               nullptr);
  }

  /// What explaining it takes.
  std::size_t allocations_for(std::size_t topics) {
    apply_topics(topics);
    const std::size_t before = allocations();
    const auto explained = operations::explain(database(), server_id, 7);
    const std::size_t after = allocations();
    EXPECT_EQ(explained.cameras.at(0).topics.size(), topics);
    EXPECT_EQ(explained.cameras.at(0).topics.at(0).reasons.at(0).code, "topic-not-supported");
    return after - before;
  }

  Log_Capture log;
};

TEST_F(Explained_Triggers, cost_twice_as_much_with_twice_the_topics) {
  EXPECT_LT(allocations_for(2'000), 2.5 * static_cast<double>(allocations_for(1'000)));
}

}  // namespace
}  // namespace kuv::test
