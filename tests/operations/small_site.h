// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "embedded_server/persistent/database_test.h"
#include "support/log_capture.h"
#include "vemora/embedded_server/host/trigger_host.h"
#include "vemora/operations/site/reason.h"

namespace kuv::test {

/// A site with two cameras and a subscription, on which documents are applied.
class Small_Site : public testing::Test, public Database_Fixture {
 protected:
  Small_Site() : Database_Fixture({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {
    site.given_server(server_id).name = "one";
    site.given_camera(10).named("gate").with_tag("area", "gate").with_topic("a").with_topic("b");
    site.given_camera(10).detecting_objects().detecting_motion();
    site.given_camera(11).named("dock").with_tag("area", "dock").with_topic("a");
    site.given_camera(11).detecting_objects();
    site.given_generic_subscription(3).named("door").with_tag("door", "main");
    site.given_schedule(1);
    site.given_schedule(2, false);
    site.given_object_type("vehicle", {"car", "truck"});
    site.store_in(database());
  }

  static std::string config_of(const std::vector<std::string>& triggers) {
    std::string text;
    for (const std::string& one : triggers) {
      text += (text.empty() ? "" : ",") + one;
    }
    return R"({"triggers": [)" + text + "]}";
  }

  /// A trigger of the configuration; `tags` and `sources` are the members of theirs.
  static std::string a_trigger(std::uint64_t id, const std::string& sources,
                               const std::string& tags = "", const std::string& others = "") {
    return R"({"id": )" + std::to_string(id) + R"(, "name": "trigger )" + std::to_string(id) +
           R"(", "tags": {)" + tags + R"(}, "sources": [)" + sources + "]" + others + "}";
  }

  static std::string on_topic(const std::string& topic) {
    return R"({"type": "onvif-metadata", "onvifTopic": ")" + topic + "\"}";
  }

  static std::string on_object(const std::string& type, bool motion_required = false) {
    return R"({"type": "object-detection", "searchItem": {"type": ")" + type +
           (motion_required ? R"(", "motionRequired": true}})" : "\"}}");
  }

  void apply(const std::vector<std::string>& triggers,
             const std::optional<std::string>& mapping = std::nullopt) {
    const std::optional<Json_Document> schedules =
        mapping ? std::make_optional<Json_Document>(*mapping) : std::nullopt;
    const Pass_Outcome outcome =
        Trigger_Host(database(), server_id)
            .apply(Json_Document(config_of(triggers)), schedules ? &*schedules : nullptr);
    ASSERT_EQ(outcome.status, Pass_Outcome::Status::done);
  }

  /// "code: text"
  static std::vector<std::string> texts_of(const vemora::operations::Reasons& reasons) {
    std::vector<std::string> texts;
    for (const auto& [code, text] : reasons) {
      texts.push_back(code + ": " + text);
    }
    return texts;
  }

  static std::vector<std::string> codes_of(const vemora::operations::Reasons& reasons) {
    std::vector<std::string> codes;
    for (const auto& reason : reasons) {
      codes.push_back(reason.code);
    }
    return codes;
  }

  static constexpr const char* on_subscriptions = R"({"type": "metadata-event"})";
  static constexpr const char* on_motion = R"({"type": "motion-detection"})";
  static constexpr const char* at_gate = R"("camera": {"area": "gate"})";
  static constexpr const char* at_dock = R"("camera": {"area": "dock"})";

  Log_Capture log;
};

}  // namespace kuv::test
