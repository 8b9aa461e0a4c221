// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/history.h"

#include <odb/database.hxx>

#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/history/entry_row.h"
#include "vemora/embedded_server/persistent/history/error_texts.h"
#include "vemora/embedded_server/persistent/history/last_entry.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"
#include "vemora/embedded_server/persistent/pass/join_pass.h"

namespace kuv::vemora::embedded_server {
namespace {

bool has_history(Database& database) {
  return database.schema_version() >= first_version_with_history;
}

Past_Text load_text(odb::database& database, const std::optional<std::string>& digest) {
  Past_Text found;
  rows::History_Text row;
  found.was_there = digest.has_value();
  if (digest && database.find(*digest, row)) {
    found.text.emplace(row.text.begin(), row.text.end());
  }
  return found;
}

std::optional<std::vector<std::string>> load_errors(odb::database& database,
                                                    const std::optional<std::string>& digest) {
  const Past_Text joined = load_text(database, digest);
  if (!joined.was_there) {
    return std::vector<std::string>();
  }
  return joined.text ? texts_in(*joined.text) : std::nullopt;
}

Past_Pass load_past_pass(odb::database& database, const rows::History_Entry& row) {
  return {entry_of(row), load_errors(database, row.errors), load_text(database, row.config),
          load_text(database, row.mapping)};
}

}  // namespace

std::uint64_t last_pass_in_history(const std::shared_ptr<Database>& database) {
  return read(database, [&database](Site_Index&) {
    if (!has_history(*database)) {
      return std::uint64_t{0};
    }
    const auto last = last_entry_in(database->engine().odb());
    return last ? last->pass : std::uint64_t{0};
  });
}

std::vector<History_Entry> read_history(const std::shared_ptr<Database>& database) {
  return read(database, [&database](Site_Index&) {
    std::vector<History_Entry> entries;
    if (has_history(*database)) {
      for_each_row<rows::History_Entry>(
          database->engine().odb(), "pass DESC",
          [&entries](const rows::History_Entry& row) { entries.push_back(entry_of(row)); });
    }
    return entries;
  });
}

std::optional<Past_Pass> read_past_pass(const std::shared_ptr<Database>& database,
                                        std::uint64_t pass) {
  return read(database, [&](Site_Index&) -> std::optional<Past_Pass> {
    rows::History_Entry row;
    odb::database& tables = database->engine().odb();
    if (!has_history(*database) || !tables.find(pass, row)) {
      return std::nullopt;
    }
    return load_past_pass(tables, row);
  });
}

}  // namespace kuv::vemora::embedded_server
