// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// The rules that rows obey (the CHECK constraints of the schema) are the database's own: whoever
// writes, a row that breaks one is refused. Each rule has a row here that breaks it and no other.

#include <map>
#include <set>
#include <string>
#include <vector>

#include "embedded_server/persistent/site_at_work.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/pass_scope.h"

namespace kuv::test {
namespace {

/// A statement that writes one row, and the rule that it breaks.
struct Broken {
  std::string rule;
  std::string statement;
};

std::string source(const std::string& columns, const std::string& values) {
  return "INSERT INTO trigger_source (trigger_id, position, " + columns + ") VALUES (7, " + values +
         ")";
}

std::string topic_source(const std::string& type_and_topic) {
  return source("type, onvif_topic", "0, " + type_and_topic);
}

std::string lasting_source(const std::string& type, const std::string& mode_and_durations) {
  const std::string object = type == "2" ? "'car', '1'" : "NULL, NULL";
  return source("type, object_type, motion_required, activity_mode, min_duration_us, dropout_us",
                "0, " + type + ", " + object + ", " + mode_and_durations);
}

/// An entry of the history, given its number, status, count of errors and digest of errors.
std::string history_entry_with(const std::string& values) {
  return "INSERT INTO history_entry (pass, status, error_count, errors, at, command, "
         "triggers_created, triggers_changed, triggers_deleted, reconciled, trigger_writes, "
         "trigger_deletions, subscription_writes, subscription_deletions, "
         "subscription_link_writes, subscription_link_deletions, detection_writes, "
         "detection_deletions, detection_link_writes, detection_link_deletions) VALUES (" +
         values + ", 0, 'apply', '', '', '', '', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)";
}

/// An empty text of the history, given its digest and its size.
std::string history_text_with(const std::string& values) {
  return "INSERT INTO history_text (digest, size, text) VALUES (" + values + ", '')";
}

const std::vector<Broken>& broken_on_every_engine() {
  static const std::vector<Broken> rows{
      {"site_id_check", "INSERT INTO site (id, schema_version) VALUES (2, 2)"},
      {"site_schema_version", "UPDATE site SET schema_version = 0"},
      {"document_kind", "INSERT INTO document (kind, text) VALUES ('notes', '')"},
      {"capability_document_text", "INSERT INTO capability_document (id, text) VALUES (77, '')"},
      {"meta_type_type", "INSERT INTO meta_type (name, type) VALUES ('vehicle', '')"},
      {"trigger_source_position", source("type", "-1, 1")},
      {"trigger_source_type", source("type", "0, -1")},
      {"trigger_source_type", source("type", "0, 3")},
      {"trigger_source_onvif_topic", topic_source("0, NULL")},
      {"trigger_source_onvif_topic", topic_source("0, ''")},
      {"trigger_source_onvif_topic", topic_source("1, 'tns1:VideoSource/MotionAlarm'")},
      {"trigger_source_onvif_topic", topic_source("6, 'tns1:VideoSource/MotionAlarm'")},
      {"trigger_source_object_type", source("type", "0, 2")},
      {"trigger_source_object_type", source("type, object_type, motion_required", "0, 2, '', '1'")},
      {"trigger_source_object_type",
       source("type, object_type, motion_required", "0, 4, 'car', '1'")},
      {"trigger_source_search", source("type, object_type", "0, 2, 'car'")},
      {"trigger_source_search", source("type, motion_required", "0, 4, '1'")},
      {"trigger_source_activity_mode", lasting_source("1", "0, 1, 1")},
      {"trigger_source_activity_mode", lasting_source("4", "1, 1, 1")},
      {"trigger_source_activity_mode", lasting_source("2", "2, 1, 1")},
      {"trigger_source_activity", lasting_source("2", "0, NULL, 1")},
      {"trigger_source_activity", lasting_source("2", "0, 1, NULL")},
      {"trigger_source_activity", lasting_source("2", "NULL, 1, 1")},
      {"trigger_source_min_duration", lasting_source("2", "0, 0, 1")},
      {"trigger_source_dropout", lasting_source("2", "1, 1, -1")},
      {"trigger_source_dropout", lasting_source("2", "0, 1, 0")},
      {"trigger_source_dropout", lasting_source("4", "0, 1, 0")},
      {"id_allocation_kind", "INSERT INTO id_allocation (kind, next_id) VALUES ('trigger', 1)"},
      {"history_entry_pass", history_entry_with("0, 0, 0, NULL")},
      {"history_entry_status", history_entry_with("77, 3, 0, NULL")},
      {"history_entry_error_count", history_entry_with("77, 1, -1, 'a'")},
      {"history_entry_errors", history_entry_with("77, 1, 0, 'a'")},
      {"history_entry_errors", history_entry_with("77, 1, 1, NULL")},
      {"history_text_digest", history_text_with("'abc', 0")},
      {"history_text_size", history_text_with("'" + std::string(64, 'a') + "', 1")}};
  return rows;
}

/// PostgreSQL has a type for what is true or false.
const std::vector<Broken>& broken_flags() {
  static const std::vector<Broken> rows{
      {"camera_object_detection", "INSERT INTO camera VALUES (77, '', 2, 0)"},
      {"camera_motion_detection", "INSERT INTO camera VALUES (77, '', 0, -1)"},
      {"schedule_usable", "INSERT INTO schedule VALUES (77, '', 'yes')"},
      {"trigger_source_motion_required",
       source("type, object_type, motion_required", "0, 2, 'car', 2")}};
  return rows;
}

class Row_Rules : public Database_Test {
 protected:
  bool is_sqlite() const { return engine().name == "sqlite"; }

  std::vector<Broken> broken() const {
    std::vector<Broken> rows = broken_on_every_engine();
    if (is_sqlite()) {
      rows.insert(rows.end(), broken_flags().begin(), broken_flags().end());
    }
    return rows;
  }

  /// What the engine says of a statement.
  std::string answer_to(const std::string& statement) {
    try {
      foreign_program().execute(statement);
      return "it was carried out";
    } catch (const std::runtime_error& complaint) {
      return complaint.what();
    }
  }

  std::set<std::string> names(const std::string& query) {
    std::set<std::string> found;
    for (const Row& row : foreign_program().query(query)) {
      found.insert(row.front().value());
    }
    return found;
  }

  /// Every rule that the live tables have.
  std::set<std::string> rules() {
    if (!is_sqlite()) {
      return names(
          "SELECT conname FROM pg_constraint WHERE contype = 'c' AND "
          "connamespace = current_schema()::regnamespace");
    }
    std::set<std::string> found;
    const std::string mark = "CONSTRAINT ";
    for (const std::string& table : names("SELECT sql FROM sqlite_master WHERE type = 'table'")) {
      for (auto at = table.find(mark); at != std::string::npos; at = table.find(mark, at + 1)) {
        const auto begin = at + mark.size();
        found.insert(table.substr(begin, table.find_first_of(" \n", begin) - begin));
      }
    }
    return found;
  }
};

TEST_P(Row_Rules, are_kept_by_the_database_itself) {
  const auto before = foreign_program().everything();
  for (const auto& [rule, statement] : broken()) {
    EXPECT_THAT(answer_to(statement), testing::HasSubstr(rule)) << statement;
  }
  EXPECT_EQ(foreign_program().everything(), before);
}

TEST_P(Row_Rules, have_each_a_row_here_that_breaks_it) {
  std::set<std::string> tried;
  for (const Broken& each : broken()) {
    tried.insert(each.rule);
  }
  database();
  EXPECT_EQ(rules(), tried);
}

/// Rows that a pass works with, tidies up, or names.
TEST_P(Row_Rules, let_in_what_passes_are_prepared_for) {
  for (const char* const statement :
       {"INSERT INTO trigger_source (trigger_id, position, type) VALUES (7, 0, 6)",
        "INSERT INTO subscription (id, name, camera_id) VALUES (77, 'no topic', 10)",
        "INSERT INTO subscription (id, name, onvif_topic) VALUES (78, 'no camera', 'a')",
        "INSERT INTO subscription (id, name, onvif_topic, camera_id) VALUES (79, 'a', '', 10)",
        "INSERT INTO subscription_trigger VALUES (4711, -1)",
        "INSERT INTO id_allocation VALUES ('subscription', -1)",
        "INSERT INTO camera_tag VALUES (10, '', '')"}) {
    EXPECT_EQ(answer_to(statement), "it was carried out") << statement;
  }
}

TEST_P(Row_Rules, are_named_to_whoever_breaks_one) {
  Inventory inventory;
  inventory.object_types["vehicle"] = {""};

  EXPECT_THAT(complaint_of([&] { store_inventory(database(), inventory); }),
              testing::HasSubstr("meta_type_type"));
}

TEST_P(Row_Rules, of_a_newer_program_are_not_worked_under) {
  const auto opened = database();
  foreign_program().execute("UPDATE site SET schema_version = 5");

  try {
    const Pass_Scope pass(opened, server_id);
    ADD_FAILURE() << "no complaint";
  } catch (const Database_Error& complaint) {
    EXPECT_THAT(complaint.what(),
                testing::HasSubstr(
                    "it was made by a newer version of this program (schema 5, known up to 4)"));
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, Row_Rules, testing::ValuesIn(database_engines()), name_of_engine);

}  // namespace
}  // namespace kuv::test
