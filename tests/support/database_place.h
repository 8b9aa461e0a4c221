// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

struct sqlite3;
struct pg_conn;

namespace kuv::test {

/// Rows as texts, whatever the engine; a cell without a text is NULL.
using Row = std::vector<std::optional<std::string>>;
using Rows = std::vector<Row>;

/// Another program at work on a database: it sees what is committed and knows nothing of passes.
class Foreign_Program {
 public:
  virtual ~Foreign_Program() = default;

  /// Runs statements; throws std::runtime_error with the engine's complaint.
  virtual void execute(const std::string& sql) = 0;
  virtual Rows query(const std::string& sql) = 0;
  virtual std::vector<std::string> tables() = 0;

  /// Every row of every table that has any, in the order of their texts.
  std::map<std::string, Rows> everything();

  std::size_t count(const std::string& table);
};

/// A place for one fresh database, which goes with this object.
class Database_Place {
 public:
  virtual ~Database_Place() = default;

  /// What a database is opened by.
  virtual std::string location() const = 0;

  /// Connects another program to the database there.
  virtual std::unique_ptr<Foreign_Program> foreign_program() = 0;
};

/// An engine that the suites run on.
struct Database_Engine {
  std::string name;
  std::function<std::unique_ptr<Database_Place>()> make_place;
  bool takes_any_bytes = true;  ///< in a text; otherwise UTF-8 without zeros
  bool keeps_transactions_after_faults = true;

  /// Those texts that it takes.
  std::vector<std::string> storable(const std::vector<std::string>& texts) const;
};

/// By its name.
std::ostream& operator<<(std::ostream& stream, const Database_Engine& engine);

/// PostgreSQL, for tests that are about it alone.
Database_Engine postgresql_engine();

/// Every engine there is: one line each.
std::vector<Database_Engine> database_engines();

/// A file of SQLite's, in a folder of its own.
class SQLite_Place : public Database_Place {
 public:
  SQLite_Place();
  ~SQLite_Place() override;
  SQLite_Place(const SQLite_Place&) = delete;
  SQLite_Place& operator=(const SQLite_Place&) = delete;

  std::string location() const override { return folder_ + "/site.db"; }
  const std::string& folder() const { return folder_; }
  std::unique_ptr<Foreign_Program> foreign_program() override;

 private:
  std::string folder_;
};

/// Another program with an SQLite file open.
class SQLite_Program : public Foreign_Program {
 public:
  explicit SQLite_Program(const std::string& path);
  ~SQLite_Program() override;
  SQLite_Program(const SQLite_Program&) = delete;
  SQLite_Program& operator=(const SQLite_Program&) = delete;

  void execute(const std::string& sql) override;
  Rows query(const std::string& sql) override;
  std::vector<std::string> tables() override;

 private:
  sqlite3* handle_ = nullptr;
};

/// A schema of its own in the cluster that the tests start for themselves.
class PostgreSQL_Place : public Database_Place {
 public:
  PostgreSQL_Place();
  ~PostgreSQL_Place() override;
  PostgreSQL_Place(const PostgreSQL_Place&) = delete;
  PostgreSQL_Place& operator=(const PostgreSQL_Place&) = delete;

  std::string location() const override;
  const std::string& schema() const { return schema_; }
  std::unique_ptr<Foreign_Program> foreign_program() override;

 private:
  std::string schema_;
};

/// Another program connected to the cluster of the tests, at work in one schema.
class PostgreSQL_Program : public Foreign_Program {
 public:
  explicit PostgreSQL_Program(std::string schema);
  ~PostgreSQL_Program() override;
  PostgreSQL_Program(const PostgreSQL_Program&) = delete;
  PostgreSQL_Program& operator=(const PostgreSQL_Program&) = delete;

  void execute(const std::string& sql) override;
  Rows query(const std::string& sql) override;
  std::vector<std::string> tables() override;

 private:
  std::string schema_;
  pg_conn* connection_ = nullptr;
};

}  // namespace kuv::test
