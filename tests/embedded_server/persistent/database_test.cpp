// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "embedded_server/persistent/database_test.h"

namespace kuv::test {

Database_Fixture::Database_Fixture(const Database_Engine& engine)
    : engine_(engine), place_(engine.make_place()) {}

const std::shared_ptr<Database>& Database_Fixture::database() {
  if (!database_ && exists_) {
    database_ = open_again();
  } else if (!database_) {
    database_ = Database::open(location(), Database::Open_Mode::create_if_absent);
    site.store_in(database_);
    exists_ = true;
  }
  return database_;
}

std::shared_ptr<Database> Database_Fixture::open_again(std::chrono::milliseconds lock_wait) {
  return Database::open(location(), Database::Open_Mode::existing, lock_wait);
}

Foreign_Program& Database_Fixture::foreign_program() {
  if (!exists_) {
    database();
  }
  if (!foreign_program_) {
    foreign_program_ = place_->foreign_program();
  }
  return *foreign_program_;
}

std::string name_of_engine(const testing::TestParamInfo<Database_Engine>& info) {
  return info.param.name;
}

}  // namespace kuv::test
