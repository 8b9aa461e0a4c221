// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "embedded_server/persistent/database_test.h"
#include "vemora/testing/contract/repository_contract_test.h"

namespace kuv::test {

/// Whether the calls of a test are made in one pass, or each on its own.
enum class Joining { one_pass, no_pass };

/// A site in a database of ours, for the contract suite.
class Database_Site : public Site_Under_Test, public Database_Fixture {
 public:
  Database_Site(const Database_Engine& engine, Joining joining, const Site_Description& described);

  /// The first call begins the pass.
  Repository& repository() override;

  /// Ends the pass, closes the database and opens it again.
  bool reopen() override;

  std::optional<Stored_Rows> look_behind() override;
  bool plant(const Half_Filled_Subscription& planted) override;

 private:
  Joining joining_;
  std::unique_ptr<Pass_Scope> pass_;
  std::shared_ptr<Repository> repository_;
};

/// Every engine, inside a pass and outside one.
std::vector<Contract_Implementation> database_implementations();

/// What our databases promise beyond the contracts. The site is stored as the suite does it.
class Database_Contract_Test : public Repository_Contract_Test {
 protected:
  Database_Site& database_site() { return static_cast<Database_Site&>(site_under_test()); }
  const std::shared_ptr<Database>& database() { return database_site().database(); }
  Foreign_Program& foreign_program() { return database_site().foreign_program(); }
  bool takes_any_bytes() const { return GetParam().stores_any_bytes; }

  /// Stores what was said of the site since.
  void store_site() { Site_Builder(site).store_in(database()); }
};

}  // namespace kuv::test
