// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/pass/documents.h"

#include <fmt/format.h>

#include <odb/database.hxx>
#include <string>
#include <string_view>

#include "rows-odb.h"
#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/pass/site_row.h"

namespace kuv::vemora::embedded_server {
namespace {

/// As one block of memory: iterators would be copied byte by byte.
std::string_view text_of(const rows::Document& row) {
  return {row.text.data(), row.text.size()};
}

/// Whether storing it would change nothing.
bool is_stored(odb::database& database, const std::string& kind,
               const std::optional<std::string>& text) {
  rows::Document row;
  return !text || (database.find(kind, row) && text_of(row) == *text);
}

void store_document(odb::database& database, const std::string& kind,
                    const std::optional<std::string>& text) {
  if (!text) {
    return;
  }
  rows::Document row;
  const bool exists = database.find(kind, row);
  if (exists && text_of(row) == *text) {
    return;
  }
  row.kind = kind;
  row.text.assign(text->begin(), text->end());
  if (exists) {
    database.update(row);
  } else {
    database.persist(row);
  }
}

}  // namespace

void require_owner(odb::database& database, std::uint64_t server_id) {
  const rows::Site site = load_site(database);
  if (site.server_id && *site.server_id != server_id) {
    throw Database_Error(
        fmt::format("it belongs to server {}, not to server {}", *site.server_id, server_id));
  }
}

std::optional<std::string> load_document(odb::database& database, const char* kind) {
  rows::Document row;
  return database.find(std::string(kind), row) ? std::make_optional<std::string>(text_of(row))
                                               : std::nullopt;
}

Documents load_documents(odb::database& database) {
  return {load_document(database, "config"), load_document(database, "mapping")};
}

bool are_stored(odb::database& database, const Documents& accepted) {
  return is_stored(database, "config", accepted.config) &&
         is_stored(database, "mapping", accepted.mapping);
}

void store_documents(odb::database& database, const Documents& accepted) {
  store_document(database, "config", accepted.config);
  store_document(database, "mapping", accepted.mapping);
}

}  // namespace kuv::vemora::embedded_server
