// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "benchmarks/floor.h"

#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>

#include "benchmarks/heap_meter.h"
#include "benchmarks/state_builder.h"
#include "benchmarks/stopwatch.h"
#include "vemora/embedded_server/persistent/site_reader.h"

namespace kuv::benchmarks {
namespace {

using namespace vemora::embedded_server;

constexpr const char* lean_schema = R"(
PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL; PRAGMA cache_size=-262144;
CREATE TABLE trigger_record (id INTEGER PRIMARY KEY, name TEXT);
CREATE TABLE source (trigger_id INTEGER, position INTEGER, type INTEGER, topic TEXT, object_type TEXT,
                     PRIMARY KEY (trigger_id, position)) WITHOUT ROWID;
CREATE TABLE subscription (id INTEGER PRIMARY KEY, topic TEXT, camera_id INTEGER);
CREATE TABLE subscription_link (record_id INTEGER, trigger_id INTEGER,
                                PRIMARY KEY (record_id, trigger_id)) WITHOUT ROWID;
CREATE INDEX subscription_link_by_trigger ON subscription_link (trigger_id);
CREATE TABLE detection (id INTEGER PRIMARY KEY, camera_id INTEGER);
CREATE TABLE detection_link (record_id INTEGER, trigger_id INTEGER,
                             PRIMARY KEY (record_id, trigger_id)) WITHOUT ROWID;
CREATE INDEX detection_link_by_trigger ON detection_link (trigger_id);
)";

/// A connection as a C program has it.
class Connection {
 public:
  explicit Connection(const std::string& path) { require(sqlite3_open(path.c_str(), &handle_)); }
  ~Connection() { sqlite3_close(handle_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void run(const char* sql) { require(sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr)); }

  void require(int result) {
    if (result != SQLITE_OK) {
      throw std::runtime_error(sqlite3_errmsg(handle_));
    }
  }

  sqlite3* handle() { return handle_; }

 private:
  sqlite3* handle_ = nullptr;
};

class Statement {
 public:
  Statement(Connection& connection, const char* sql) : connection_(connection) {
    connection.require(sqlite3_prepare_v2(connection.handle(), sql, -1, &statement_, nullptr));
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  void bind(int place, std::uint64_t number) {
    sqlite3_bind_int64(statement_, place, static_cast<sqlite3_int64>(number));
  }
  void bind(int place, const std::string& text) {
    sqlite3_bind_text(statement_, place, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
  }

  template <class... Values>
  void insert(const Values&... values) {
    int place = 0;
    (bind(++place, values), ...);
    if (sqlite3_step(statement_) != SQLITE_DONE) {
      throw std::runtime_error(sqlite3_errmsg(connection_.handle()));
    }
    sqlite3_reset(statement_);
  }

  bool next() { return sqlite3_step(statement_) == SQLITE_ROW; }
  std::uint64_t number(int column) {
    return static_cast<std::uint64_t>(sqlite3_column_int64(statement_, column));
  }
  std::string text(int column) {
    const auto* const bytes =
        reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
  }

 private:
  Connection& connection_;
  sqlite3_stmt* statement_ = nullptr;
};

void insert_links(Connection& connection, const char* sql,
                  const std::vector<Plain_Rows::Link>& links) {
  Statement statement(connection, sql);
  for (const Plain_Rows::Link& link : links) {
    statement.insert(link.record_id, link.trigger_id);
  }
}

void insert_rows(Connection& connection, const Plain_Rows& rows) {
  Statement trigger(connection, "INSERT INTO trigger_record VALUES (?, ?)");
  for (const Plain_Rows::Named& row : rows.triggers) {
    trigger.insert(row.id, row.name);
  }
  Statement source(connection, "INSERT INTO source VALUES (?, ?, ?, ?, ?)");
  for (const Plain_Rows::Source& row : rows.sources) {
    source.insert(row.trigger_id, std::uint64_t{row.position}, static_cast<std::uint64_t>(row.type),
                  row.topic, row.object_type);
  }
  Statement subscription(connection, "INSERT INTO subscription VALUES (?, ?, ?)");
  for (const Plain_Rows::Subscription& row : rows.subscriptions) {
    subscription.insert(row.id, row.topic, row.camera_id);
  }
  insert_links(connection, "INSERT INTO subscription_link VALUES (?, ?)", rows.subscription_links);
  Statement detection(connection, "INSERT INTO detection VALUES (?, ?)");
  for (const Plain_Rows::Detection& row : rows.detections) {
    detection.insert(row.id, row.camera_id);
  }
  insert_links(connection, "INSERT INTO detection_link VALUES (?, ?)", rows.detection_links);
}

void remove_database(const std::string& path) {
  for (const char* suffix : {"", "-wal", "-shm"}) {
    std::filesystem::remove(path + suffix);
  }
}

}  // namespace

Plain_Rows read_plain_rows(const std::shared_ptr<Database>& database) {
  Plain_Rows rows;
  for (const auto& record : read_triggers(database)) {
    rows.triggers.push_back({record->id, record->name});
    std::uint32_t position = 0;
    for (const vemora::Trigger_Source& source : record->sources) {
      rows.sources.push_back({record->id, position++, static_cast<std::int32_t>(source.type),
                              source.onvif_topic.value_or(""),
                              source.search_item ? source.search_item->object_type : ""});
    }
  }
  for (const auto& record : read_subscriptions(database)) {
    rows.subscriptions.push_back(
        {record->id, record->onvif_topic.value_or(""), record->camera ? record->camera_id() : 0});
    for (const std::uint64_t trigger_id : record->trigger_ids()) {
      rows.subscription_links.push_back({record->id, trigger_id});
    }
  }
  for (const auto& record : read_eta_cameras(database)) {
    rows.detections.push_back({record->id, record->camera_id()});
    for (const auto& trigger : record->triggers) {
      rows.detection_links.push_back({record->id, trigger->id});
    }
  }
  return rows;
}

double write_floor(const std::string& path, const Plain_Rows& rows) {
  remove_database(path);
  Connection connection(path);
  connection.run(lean_schema);
  settle_heap();
  const Stopwatch watch;
  connection.run("BEGIN IMMEDIATE");
  insert_rows(connection, rows);
  connection.run("COMMIT");
  return watch.seconds();
}

namespace {

void read_state(const std::string& path, vemora::Trigger_Config_State& state) {
  Connection connection(path);
  connection.run("PRAGMA cache_size=-262144; BEGIN");
  State_Builder builder(state);
  const auto each = [&connection](const char* sql, const auto& take) {
    Statement rows(connection, sql);
    while (rows.next()) {
      take(rows);
    }
  };
  each("SELECT id, name FROM trigger_record",
       [&](Statement& row) { builder.add_trigger(row.number(0)); });
  each("SELECT trigger_id, topic, object_type FROM source",
       [&](Statement& row) { builder.add_source(row.number(0), row.text(2)); });
  each("SELECT id, topic, camera_id FROM subscription", [&](Statement& row) {
    builder.add_subscription(row.number(0), row.text(1), row.number(2));
  });
  each("SELECT record_id, trigger_id FROM subscription_link",
       [&](Statement& row) { builder.add_subscription_link(row.number(0), row.number(1)); });
  each("SELECT id, camera_id FROM detection",
       [&](Statement& row) { builder.add_detection(row.number(0), row.number(1)); });
  each("SELECT record_id, trigger_id FROM detection_link",
       [&](Statement& row) { builder.add_detection_link(row.number(0), row.number(1)); });
  connection.run("COMMIT");
}

}  // namespace

double read_floor(const std::string& path, vemora::Trigger_Config_State& state) {
  settle_heap();
  const Stopwatch watch;
  read_state(path, state);
  return watch.seconds();
}

}  // namespace kuv::benchmarks
