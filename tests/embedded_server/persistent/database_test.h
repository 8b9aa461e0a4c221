// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "support/database_place.h"
#include "support/site_builder.h"
#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/embedded_server/persistent/site_reader.h"
#include "vemora/testing/builders/record_texts.h"

namespace kuv::test {

using namespace kuv::vemora::embedded_server;

/// Works on one fresh database.
class Database_Fixture {
 public:
  explicit Database_Fixture(const Database_Engine& engine);

  /// The database, with the site stored in it when it is first asked for.
  const std::shared_ptr<Database>& database();

  /// The database as other users of it would open it.
  std::shared_ptr<Database> open_again(
      std::chrono::milliseconds lock_wait = std::chrono::seconds(30));

  /// Lets go of everything in memory. Nothing else may hold it.
  void close() { database_.reset(); }

  const Database_Engine& engine() const { return engine_; }
  std::string location() const { return place_->location(); }
  Foreign_Program& foreign_program();

  Site_Builder site;
  static constexpr std::uint64_t server_id = 1;

 private:
  Database_Engine engine_;
  std::unique_ptr<Database_Place> place_;
  std::shared_ptr<Database> database_;
  bool exists_ = false;
  std::unique_ptr<Foreign_Program> foreign_program_;
};

/// A test of the database itself, on every engine.
class Database_Test : public testing::TestWithParam<Database_Engine>, public Database_Fixture {
 protected:
  Database_Test() : Database_Fixture(GetParam()) {}
};

std::string name_of_engine(const testing::TestParamInfo<Database_Engine>& info);

}  // namespace kuv::test
