// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "benchmarks/postgresql_floor.h"

#include <fmt/format.h>
#include <libpq-fe.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

#include "benchmarks/heap_meter.h"
#include "benchmarks/state_builder.h"
#include "benchmarks/stopwatch.h"

namespace kuv::benchmarks {
namespace {

constexpr const char* lean_schema = R"(
CREATE TABLE trigger_record (id bigint PRIMARY KEY, name text);
CREATE TABLE source (trigger_id bigint, position integer, type integer, topic text, object_type text,
                     PRIMARY KEY (trigger_id, position));
CREATE TABLE subscription (id bigint PRIMARY KEY, topic text, camera_id bigint);
CREATE TABLE subscription_link (record_id bigint, trigger_id bigint, PRIMARY KEY (record_id, trigger_id));
CREATE INDEX subscription_link_by_trigger ON subscription_link (trigger_id);
CREATE TABLE detection (id bigint PRIMARY KEY, camera_id bigint);
CREATE TABLE detection_link (record_id bigint, trigger_id bigint, PRIMARY KEY (record_id, trigger_id));
CREATE INDEX detection_link_by_trigger ON detection_link (trigger_id);
)";

using Result = std::unique_ptr<PGresult, decltype(&PQclear)>;

/// A connection to the server, at work in the schema that the URL ends with.
class Connection {
 public:
  explicit Connection(const std::string& url)
      : schema_(url.substr(url.rfind('=') + 1)),
        handle_(PQconnectdb(url.substr(0, url.rfind("schema=")).c_str()), &PQfinish) {
    run("SET client_min_messages = error; SET search_path = " + schema_);
  }

  const std::string& schema() const { return schema_; }

  Result run(const std::string& sql) {
    Result result(PQexec(handle_.get(), sql.c_str()), &PQclear);
    const ExecStatusType status = PQresultStatus(result.get());
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK && status != PGRES_COPY_IN) {
      throw std::runtime_error(PQerrorMessage(handle_.get()));
    }
    return result;
  }

  /// Copies rows, each as `text_of` writes it, into a table.
  template <class Rows, class Text_Of>
  void copy(const char* table, const Rows& rows, Text_Of text_of) {
    run(fmt::format("COPY {} FROM STDIN", table));
    std::string text;
    for (const auto& row : rows) {
      text += text_of(row);
      text += '\n';
    }
    PQputCopyData(handle_.get(), text.data(), static_cast<int>(text.size()));
    PQputCopyEnd(handle_.get(), nullptr);
    while (const Result result{PQgetResult(handle_.get()), &PQclear}) {
      if (PQresultStatus(result.get()) != PGRES_COMMAND_OK) {
        throw std::runtime_error(PQerrorMessage(handle_.get()));
      }
    }
  }

 private:
  std::string schema_;
  std::unique_ptr<PGconn, decltype(&PQfinish)> handle_;
};

std::uint64_t number(const Result& result, int row, int column) {
  return std::strtoull(PQgetvalue(result.get(), row, column), nullptr, 10);
}

template <class Take>
void each(Connection& connection, const char* sql, Take take) {
  const Result result = connection.run(sql);
  for (int row = 0; row < PQntuples(result.get()); ++row) {
    take(result, row);
  }
}

std::string link_text(const Plain_Rows::Link& link) {
  return fmt::format("{}\t{}", link.record_id, link.trigger_id);
}

}  // namespace

double write_postgresql_floor(const std::string& url, const Plain_Rows& rows) {
  Connection connection(url);
  connection.run(fmt::format("DROP SCHEMA IF EXISTS {0} CASCADE; CREATE SCHEMA {0}; {1}",
                             connection.schema(), lean_schema));
  settle_heap();
  const Stopwatch watch;
  connection.run("BEGIN");
  connection.copy("trigger_record", rows.triggers, [](const Plain_Rows::Named& row) {
    return fmt::format("{}\t{}", row.id, row.name);
  });
  connection.copy("source", rows.sources, [](const Plain_Rows::Source& row) {
    return fmt::format("{}\t{}\t{}\t{}\t{}", row.trigger_id, row.position, row.type, row.topic,
                       row.object_type);
  });
  connection.copy("subscription", rows.subscriptions, [](const Plain_Rows::Subscription& row) {
    return fmt::format("{}\t{}\t{}", row.id, row.topic, row.camera_id);
  });
  connection.copy("subscription_link", rows.subscription_links, link_text);
  connection.copy("detection", rows.detections, [](const Plain_Rows::Detection& row) {
    return fmt::format("{}\t{}", row.id, row.camera_id);
  });
  connection.copy("detection_link", rows.detection_links, link_text);
  connection.run("COMMIT");
  return watch.seconds();
}

namespace {

void read_state(const std::string& url, vemora::Trigger_Config_State& state) {
  Connection connection(url);
  State_Builder builder(state);
  each(connection, "SELECT id, name FROM trigger_record",
       [&](const Result& row, int at) { builder.add_trigger(number(row, at, 0)); });
  each(connection, "SELECT trigger_id, object_type FROM source", [&](const Result& row, int at) {
    builder.add_source(number(row, at, 0), PQgetvalue(row.get(), at, 1));
  });
  each(connection, "SELECT id, topic, camera_id FROM subscription", [&](const Result& row, int at) {
    builder.add_subscription(number(row, at, 0), PQgetvalue(row.get(), at, 1), number(row, at, 2));
  });
  each(connection, "SELECT record_id, trigger_id FROM subscription_link",
       [&](const Result& row, int at) {
         builder.add_subscription_link(number(row, at, 0), number(row, at, 1));
       });
  each(connection, "SELECT id, camera_id FROM detection", [&](const Result& row, int at) {
    builder.add_detection(number(row, at, 0), number(row, at, 1));
  });
  each(connection, "SELECT record_id, trigger_id FROM detection_link",
       [&](const Result& row, int at) {
         builder.add_detection_link(number(row, at, 0), number(row, at, 1));
       });
}

}  // namespace

double read_postgresql_floor(const std::string& url, vemora::Trigger_Config_State& state) {
  settle_heap();
  const Stopwatch watch;
  read_state(url, state);
  return watch.seconds();
}

void drop_schema(const std::string& url) {
  Connection connection(url);
  connection.run(fmt::format("DROP SCHEMA IF EXISTS {} CASCADE", connection.schema()));
}

}  // namespace kuv::benchmarks
