// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// The judge of a host: when it is asked, and what it makes of hostile documents.

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "embedded_server/persistent/database_test.h"
#include "support/log_capture.h"
#include "vemora/embedded_server/host/trigger_host.h"
#include "vemora/operations/warnings/warnings.h"

namespace kuv::test {
namespace {

using Status = Pass_Outcome::Status;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::SizeIs;

constexpr const char* a_mistake = R"({"triggers": [
  {"id": 7, "name": "", "tags": {"cameras": {}}, "sources": [{"type": "metadata-event"}]}]})";

class Warned_Documents : public testing::Test, public Database_Fixture {
 protected:
  Warned_Documents()
      : Database_Fixture({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {
    site.given_server(server_id);
    site.given_camera(10).with_topic("a").with_tag("area", "gate");
    site.given_schedule(1);
    site.store_in(database());
  }

  Trigger_Host host(bool warnings_reject = false) {
    return {database(), server_id,
            Host_Services{nullptr, nullptr, operations::warn_of_documents(database(), server_id),
                          warnings_reject}};
  }

  std::vector<Document_Warning> warnings_of(
      const std::string& config, const std::string& mapping = R"({"triggerMapping": []})") {
    const Json_Document given(mapping);
    std::vector<Document_Warning> warnings;
    const auto faults = host().check(Json_Document(config), &given, warnings);
    EXPECT_THAT(faults, IsEmpty());
    return warnings;
  }

  Log_Capture log;
};

auto has_code(const std::string& code) {
  return Field(&Document_Warning::code, code);
}

TEST_F(Warned_Documents, are_applied_all_the_same) {
  const Pass_Outcome outcome = host().apply(Json_Document(a_mistake), nullptr);

  EXPECT_EQ(outcome.status, Status::done);
  EXPECT_THAT(outcome.warnings, ElementsAre(has_code("unknown-key")));
  EXPECT_EQ(outcome.warnings.front().stored, nullptr);
  EXPECT_FALSE(outcome.rejected_for_warnings);
}

TEST_F(Warned_Documents, are_rejected_where_warnings_shall) {
  Trigger_Host strict = host(true);

  const Pass_Outcome outcome = strict.apply(Json_Document(a_mistake), nullptr);

  EXPECT_EQ(outcome.status, Status::rejected);
  EXPECT_TRUE(outcome.rejected_for_warnings);
  EXPECT_THAT(outcome.errors, IsEmpty());
  EXPECT_FALSE(outcome.rejection);
  EXPECT_THAT(outcome.warnings, ElementsAre(has_code("unknown-key")));
  EXPECT_EQ(strict.kept(), Kept::nothing);
  EXPECT_THAT(foreign_program().query("SELECT * FROM document"), IsEmpty());
  EXPECT_EQ(strict.apply(Json_Document(R"({"triggers": []})"), nullptr).status, Status::done);
}

TEST_F(Warned_Documents, that_are_stored_are_judged_at_a_refresh_and_come_with_their_warnings) {
  host().apply(Json_Document(a_mistake), nullptr);

  const Pass_Outcome outcome = host().refresh();

  ASSERT_THAT(outcome.warnings, ElementsAre(has_code("unknown-key")));
  ASSERT_NE(outcome.warnings.front().stored, nullptr);
  EXPECT_EQ(outcome.warnings.front().stored->text(), a_mistake);
  const Pass_Outcome strict = host(true).refresh();
  EXPECT_EQ(strict.status, Status::rejected);
  EXPECT_TRUE(strict.rejected_for_warnings);
}

/// What comes of three triggers, one of them on a camera whose capabilities are damaged.
struct Damaged_Site : Database_Fixture {
  Damaged_Site() : Database_Fixture({"sqlite", [] { return std::make_unique<SQLite_Place>(); }}) {
    site.given_server(server_id);
    site.given_camera(10).with_topic("a").with_tag("area", "gate");
    site.given_camera(11).with_topic("b").with_tag("area", "dock");
    site.store_in(database());
    foreign_program().execute(
        "UPDATE capability_document SET text = '{' WHERE id = "
        "(SELECT document_id FROM camera_capability WHERE camera_id = 10)");
  }

  static std::string trigger_on(int id, const std::string& area, const std::string& topic) {
    return fmt::format(R"({{"id": {}, "name": "", "tags": {{"camera": {{"area": "{}"}}}},
        "sources": [{{"type": "onvif-metadata", "onvifTopic": "{}"}}]}})",
                       id, area, topic);
  }

  static Json_Document config() {
    return Json_Document(R"({"triggers": [)" + trigger_on(7, "dock", "b") + "," +
                         trigger_on(8, "gate", "a") + "," + trigger_on(9, "dock", "c") + "]}");
  }

  Pass_Outcome apply(const Judge_Documents& judge, bool warnings_reject = false) {
    return Trigger_Host(database(), server_id, {nullptr, nullptr, judge, warnings_reject})
        .apply(config(), nullptr);
  }

  Judge_Documents judge() { return operations::warn_of_documents(database(), server_id); }

  std::vector<std::string> errors_of(const Pass_Outcome& outcome) const {
    std::vector<std::string> texts;
    for (const auto& error : outcome.errors) {
      texts.push_back(error.message);
      const auto place = texts.back().find(location());
      if (place != std::string::npos) {
        texts.back().replace(place, location().size(), "SITE");
      }
    }
    return texts;
  }
};

TEST_F(Warned_Documents, of_a_damaged_site_come_to_the_same_with_and_without_warnings) {
  Damaged_Site plain;
  Damaged_Site warned;

  const Pass_Outcome without = plain.apply(nullptr);
  const Pass_Outcome with = warned.apply(warned.judge());

  EXPECT_EQ(plain.foreign_program().query("SELECT id FROM trigger_record"), (Rows{{"7"}, {"8"}}));
  EXPECT_EQ(warned.foreign_program().everything(), plain.foreign_program().everything());
  EXPECT_EQ(with.status, without.status);
  EXPECT_THAT(warned.errors_of(without), testing::Not(IsEmpty()));
  EXPECT_EQ(warned.errors_of(with), plain.errors_of(without));
  EXPECT_EQ(with.remarks, without.remarks);
}

TEST_F(Warned_Documents, have_no_warning_of_what_a_damaged_site_does_not_say) {
  Damaged_Site site;

  EXPECT_THAT(site.apply(site.judge()).warnings, ElementsAre(has_code("topic-not-supported")));
  std::vector<Document_Warning> warnings;
  EXPECT_THAT(Trigger_Host(site.database(), site.server_id, {nullptr, nullptr, site.judge()})
                  .check(Damaged_Site::config(), nullptr, warnings),
              IsEmpty());
  ASSERT_THAT(warnings, SizeIs(1));
  EXPECT_EQ(warnings.front().fault.id, 9U);
  EXPECT_EQ(site.apply(site.judge(), true).status, Status::rejected);
}

TEST_F(Warned_Documents, are_told_of_by_nobody_where_there_is_no_judge) {
  Trigger_Host plain(database(), server_id);

  EXPECT_THAT(plain.apply(Json_Document(a_mistake), nullptr).warnings, IsEmpty());
}

TEST_F(Warned_Documents, may_be_no_objects_and_lack_their_lists) {
  for (const char* const config : {"[]", "{}", R"({"triggers": 1})", R"({"triggers": [1, []]})",
                                   R"({"triggers": [{"tags": {"server": 1}, "sources": 1}]})"}) {
    for (const char* const mapping : {"[]", "{}", R"({"triggerMapping": 1})",
                                      R"({"triggerMapping": [1, {"scheduleIds": 1}]})"}) {
      const Json_Document given(mapping);
      std::vector<Document_Warning> warnings;
      EXPECT_THAT(host().check(Json_Document(config), &given, warnings), testing::Not(IsEmpty()));
      EXPECT_THAT(warnings, IsEmpty()) << config << mapping;
    }
  }
}

TEST_F(Warned_Documents, that_have_twins_are_judged_by_the_one_that_is_kept) {
  const auto warnings = warnings_of(R"({"triggers": [
    {"id": 7, "name": "", "tags": {}, "sources": [{"type": "external"}]},
    {"id": 7, "name": "", "tags": {"camera": {"area": "roof"}}, "sources": [{"type": "metadata-event"}]},
    {"id": 7, "name": "", "tags": {}, "sources": [{"type": "external"}]}]})");

  EXPECT_THAT(warnings,
              ElementsAre(has_code("no-usable-source"), has_code("filter-matches-no-camera"),
                          has_code("no-usable-source")));
}

std::string repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t number = 0; number < count; ++number) {
    all += (number == 0 ? "" : ",") + text;
  }
  return all;
}

std::string numbered(const std::string& before, const std::string& after, std::size_t count) {
  std::string all;
  for (std::size_t number = 0; number < count; ++number) {
    all += (number == 0 ? "" : ",") + before + std::to_string(number) + after;
  }
  return all;
}

TEST_F(Warned_Documents, may_have_a_hundred_thousand_keys_that_nobody_knows) {
  const auto warnings =
      warnings_of(R"({"triggers": [], "properties": {)" +
                  numbered("\"notificationDigestCooldownMin", "\": 1", 100'000) + "}}");

  EXPECT_THAT(warnings, SizeIs(100'000));
  EXPECT_THAT(warnings, Each(has_code("unknown-key")));
}

TEST_F(Warned_Documents, may_have_unknown_keys_with_deeply_nested_values) {
  const std::string deep = std::string(900, '[') + std::string(900, ']');

  EXPECT_THAT(warnings_of(R"({"triggers": [], "a": )" + deep + R"(, "b": )" + deep + "}"),
              SizeIs(2));
}

TEST_F(Warned_Documents, may_have_a_key_as_long_as_they_are) {
  const auto warnings =
      warnings_of("{\"triggers\": [], \"" + std::string(1'000'000, 'x') + "\": 1}");

  ASSERT_THAT(warnings, SizeIs(1));
  EXPECT_LT(warnings.front().fault.fault.message.size(), 200);
}

TEST_F(Warned_Documents, may_have_triggers_with_very_many_mistakes) {
  const auto warnings = warnings_of(
      R"({"triggers": [{"id": 7, "name": "", "tags": {}, "scheduleIds": [)" +
      repeated("9", 50'000) + R"(], "sources": [{"type": "metadata-event"},)" +
      repeated(R"({"type": "radar"})", 20'000) +
      R"(]}, {"id": 8, "name": "", "tags": {}, "sources": [)" +
      numbered(R"({"type": "onvif-metadata", "onvifTopic": "t)", "\"}", 20'000) + "]}]}");

  EXPECT_THAT(warnings, SizeIs(90'000));
}

/// A configuration of triggers that each search for objects of a type.
std::string searching_for(const std::vector<std::string>& types) {
  std::string triggers;
  for (const std::string& type : types) {
    triggers += fmt::format(
        R"({}{{"id": {}, "name": "", "tags": {{}}, "sources": [{{"type": "object-detection",
        "searchItem": {{"type": "{}"}}}}]}})",
        triggers.empty() ? "" : ",", triggers.size(), type);
  }
  return R"({"triggers": [)" + triggers + "]}";
}

/// What is said of the object type of the last trigger.
std::string said_of_last_type(const std::vector<Document_Warning>& warnings) {
  std::string said;
  for (const Document_Warning& warning : warnings) {
    if (warning.code == "unknown-object-type") {
      said = warning.fault.fault.message;
    }
  }
  return said;
}

TEST_F(Warned_Documents, are_asked_once_what_was_meant_by_an_object_type) {
  std::set<std::string> types{"vehicle"};
  for (int number = 0; number < 1'000; ++number) {
    types.insert("type " + std::to_string(number));
  }
  site.given_object_type("any", types);
  site.store_in(database());

  std::vector<std::string> wanted(1'010, "lorry");
  wanted.push_back("vehicel");

  const auto warnings = warnings_of(searching_for(wanted));

  EXPECT_EQ(said_of_last_type(warnings),
            R"(The site's inventory knows no object type "vehicel"; did you mean "vehicle"?)");
}

TEST_F(Warned_Documents, are_not_asked_what_was_meant_once_that_has_taken_too_long) {
  std::set<std::string> types{"vehicle"};
  for (int number = 100; number < 200; ++number) {
    types.insert(std::string(197, 'a') + std::to_string(number));
  }
  site.given_object_type("any", types);
  site.store_in(database());
  std::vector<std::string> wanted;
  for (int number = 200; number < 240; ++number) {
    wanted.push_back(std::string(100, 'a') + std::to_string(number));
  }
  wanted.push_back("vehicel");

  const auto warnings = warnings_of(searching_for(wanted));

  EXPECT_EQ(said_of_last_type(warnings), R"(The site's inventory knows no object type "vehicel".)");
}

TEST_F(Warned_Documents, may_have_a_mapping_of_very_many_triggers_and_schedules) {
  const std::string triggers =
      numbered(R"({"id": )", R"(, "name": "", "tags": {}, "scheduleIds": [1],
      "sources": [{"type": "metadata-event"}]})",
               2'000);
  const std::string ids = numbered("", "", 2'000);

  const auto warnings =
      warnings_of(R"({"triggers": [)" + triggers + "]}",
                  R"({"triggerMapping": [{"scheduleIds": [)" + repeated("9", 20'000) +
                      R"(], "triggerIds": [)" + ids + "]}]}");

  EXPECT_THAT(warnings, SizeIs(20'000));
  EXPECT_EQ(
      warnings.front().fault.fault.message,
      "Schedule 9 does not exist, so the triggers 0, 1, 2 and 1997 more are inactive; correct "
      "the id, or add the schedule to the inventory.");
  EXPECT_EQ(warnings.front().fault.id, std::nullopt);
}

}  // namespace
}  // namespace kuv::test
