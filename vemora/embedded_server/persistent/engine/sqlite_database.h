// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <odb/sqlite/database.hxx>
#include <string>

#include "vemora/embedded_server/persistent/index/link_source.h"

namespace kuv::vemora::embedded_server {

/// ODB's database, whose links are read without an object for each.
class SQLite_Database : public odb::sqlite::database, public Link_Source {
 public:
  using odb::sqlite::database::database;

  void for_each_link(const std::string& table, const Take& take) override;
};

}  // namespace kuv::vemora::embedded_server
