// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

namespace kuv::vemora::embedded_server {

/// Where a site's database is within PostgreSQL.
struct PostgreSQL_Location {
  std::string connection;  ///< what the client library is given; may hold a password
  std::string schema;      ///< the site's own
  std::string shown;       ///< for people, without the password
};

bool is_postgresql_location(const std::string& location);

/// Takes "postgresql://user@host:port/db?schema=server_42&..." apart; every parameter but "schema"
/// is the client library's. Throws Database_Error, which names no password, when it is no such URL.
PostgreSQL_Location parse_postgresql_location(const std::string& location);

}  // namespace kuv::vemora::embedded_server
