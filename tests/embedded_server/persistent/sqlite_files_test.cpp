// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <filesystem>
#include <fstream>
#include <iterator>

#include "embedded_server/persistent/database_test.h"
#include "embedded_server/persistent/sqlite_connection.h"
#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::test {
namespace {

using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// The files that a database may be opened from, ours and others.
class SQLite_Files : public testing::Test {
 protected:
  std::string path(const std::string& name = "site.db") const {
    return place_.folder() + '/' + name;
  }

  void given_a_file(const std::string& bytes) { std::ofstream(path(), std::ios::binary) << bytes; }

  std::string bytes() const {
    std::ifstream file(path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(place_.folder())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  void given_a_database_of_ours() { Database::open(path(), Database::Open_Mode::create_if_absent); }

  void by_another_program(const std::string& sql) { SQLite_Program(path()).execute(sql); }

  /// What opening complains about.
  static std::string complaint(const std::string& location,
                               Database::Open_Mode mode = Database::Open_Mode::existing) {
    try {
      Database::open(location, mode);
    } catch (const Database_Error& error) {
      return error.what();
    }
    return "none";
  }
  std::string complaint_of_creating() const {
    return complaint(path(), Database::Open_Mode::create_if_absent);
  }

  std::string prefixed(const std::string& text) const { return "database " + path() + ": " + text; }

 private:
  SQLite_Place place_;
};

TEST_F(SQLite_Files, are_made_where_there_is_none) {
  given_a_database_of_ours();

  const auto database = Database::open(path());
  EXPECT_EQ(database->owner(), std::nullopt);
  EXPECT_THAT(read_triggers(database), IsEmpty());
}

TEST_F(SQLite_Files, are_named_with_or_without_their_engine) {
  EXPECT_EQ(complaint("sqlite:" + path(), Database::Open_Mode::create_if_absent), "none");
  EXPECT_EQ(complaint(path()), "none");
  EXPECT_EQ(complaint(""), "no database named");
  EXPECT_EQ(complaint("sqlite:"), "no database named");
  EXPECT_EQ(complaint("oracle://host/site"), "no engine for databases such as oracle://host/site");
}

TEST_F(SQLite_Files, with_names_that_mean_something_to_the_engine_are_files_still) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(std::filesystem::path(path()).parent_path());
  for (const std::string name : {":memory:", "file:site?mode=memory", "--help"}) {
    EXPECT_EQ(complaint(name, Database::Open_Mode::create_if_absent), "none");
    EXPECT_TRUE(std::filesystem::exists(path(name))) << name;
  }
  std::filesystem::current_path(before);
}

TEST_F(SQLite_Files, that_are_missing_are_not_made_unasked) {
  EXPECT_EQ(complaint(path()), "there is no database " + path() + "; \"init\" makes one");
  EXPECT_THAT(files(), IsEmpty());
}

TEST_F(SQLite_Files, in_a_folder_that_is_missing_are_refused) {
  EXPECT_EQ(complaint(path("no/site.db"), Database::Open_Mode::create_if_absent),
            "database " + path("no/site.db") + ": unable to open database file");
}

TEST_F(SQLite_Files, that_are_folders_are_refused) {
  const std::string folder = std::filesystem::path(path()).parent_path();
  EXPECT_EQ(complaint(folder), folder + " is a directory, not a database");
  EXPECT_EQ(complaint(folder, Database::Open_Mode::create_if_absent),
            folder + " is a directory, not a database");
}

TEST_F(SQLite_Files, without_a_byte_hold_no_site_and_may_be_used_for_one) {
  given_a_file("");

  EXPECT_EQ(complaint(path()), prefixed("it holds no site; \"init\" makes one"));
  EXPECT_EQ(bytes(), "");
  EXPECT_EQ(complaint_of_creating(), "none");
  EXPECT_EQ(complaint(path()), "none");
}

TEST_F(SQLite_Files, that_are_no_databases_are_refused_and_left_alone) {
  const std::string text = "These are the notes of the night shift. " + std::string(5000, 'z');
  given_a_file(text);

  EXPECT_EQ(complaint(path()), prefixed("file is not a database"));
  EXPECT_EQ(complaint_of_creating(), prefixed("file is not a database"));
  EXPECT_TRUE(bytes() == text);
  EXPECT_THAT(files(), UnorderedElementsAre("site.db"));
}

TEST_F(SQLite_Files, of_another_program_are_refused_and_left_alone) {
  by_another_program("CREATE TABLE notes (text); INSERT INTO notes VALUES ('night shift')");
  const std::string before = bytes();

  EXPECT_EQ(complaint(path()), prefixed("it is a database of another program"));
  EXPECT_EQ(complaint_of_creating(), prefixed("it is a database of another program"));
  EXPECT_TRUE(bytes() == before);
  EXPECT_THAT(files(), UnorderedElementsAre("site.db"));
}

TEST_F(SQLite_Files, of_a_newer_version_are_refused) {
  given_a_database_of_ours();
  by_another_program("UPDATE site SET schema_version = 5");
  const std::string refusal =
      prefixed("it was made by a newer version of this program (schema 5, known up to 4)");

  EXPECT_EQ(complaint(path()), refusal);
  EXPECT_EQ(complaint_of_creating(), refusal);
}

TEST_F(SQLite_Files, that_lost_their_description_are_refused) {
  given_a_database_of_ours();
  by_another_program("DROP TABLE site");

  EXPECT_EQ(complaint(path()), prefixed("no such table: site"));
}

TEST_F(SQLite_Files, that_are_damaged_are_refused) {
  given_a_database_of_ours();
  std::string damaged = bytes();
  for (std::size_t place = 4096; place < damaged.size(); ++place) {
    damaged[place] = '\x5a';
  }
  given_a_file(damaged);

  EXPECT_EQ(complaint(path()), prefixed("database disk image is malformed"));
}

TEST_F(SQLite_Files, know_who_they_belong_to) {
  given_a_database_of_ours();

  EXPECT_EQ(SQLite_Program(path()).query("PRAGMA application_id"), (Rows{{"1447907911"}}));
  EXPECT_EQ(SQLite_Program(path()).query("PRAGMA journal_mode"), (Rows{{"wal"}}));
}

/// Whether what a pass commits is on the disk when it returns.
TEST_F(SQLite_Files, are_synced_by_the_connections_that_passes_write_through) {
  given_a_database_of_ours();
  const auto database = Database::open(path());
  sqlite3* const connection = idle_connection(*database);
  const std::int64_t before = rows_written(connection);
  {
    Pass_Scope pass(database, 1);
    EXPECT_TRUE(make_repository(database)->triggers().add(a_trigger(7)));
    pass.end();
  }

  EXPECT_GT(rows_written(connection), before);
  EXPECT_EQ(setting(connection, "synchronous"), "2");
  EXPECT_EQ(setting(connection, "journal_mode"), "wal");
}

}  // namespace
}  // namespace kuv::test
