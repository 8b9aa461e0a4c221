// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <thread>

#include "embedded_server/persistent/site_at_work.h"

namespace kuv::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// What stands where, and what is no place for a site.
class PostgreSQL_Schemas : public testing::Test {
 protected:
  std::string open(const std::string& location,
                   Database::Open_Mode mode = Database::Open_Mode::existing) {
    return complaint_of([&] { Database::open(location, mode, std::chrono::seconds(30)); });
  }

  std::string prefixed(const std::string& text) const {
    return "database " + place.location() + ": " + text;
  }

  PostgreSQL_Place place;
};

TEST_F(PostgreSQL_Schemas, are_made_where_there_are_none) {
  EXPECT_EQ(open(place.location()), prefixed("it holds no site; \"init\" makes one"));

  EXPECT_EQ(open(place.location(), Database::Open_Mode::create_if_absent), "no complaint");

  EXPECT_EQ(open(place.location()), "no complaint");
  EXPECT_EQ(place.foreign_program()->query("SELECT schema_version FROM site"), (Rows{{"4"}}));
}

TEST_F(PostgreSQL_Schemas, of_a_newer_version_are_refused) {
  open(place.location(), Database::Open_Mode::create_if_absent);
  place.foreign_program()->execute("UPDATE site SET schema_version = 5");

  EXPECT_EQ(open(place.location()),
            prefixed("it was made by a newer version of this program (schema 5, known up to 4)"));
}

TEST_F(PostgreSQL_Schemas, of_other_programs_are_refused_and_left_alone) {
  PostgreSQL_Program("public").execute(
      fmt::format("CREATE SCHEMA {0}; CREATE TABLE {0}.visits (id bigint)", place.schema()));
  const std::string refusal = prefixed("the schema holds tables of another program");

  EXPECT_EQ(open(place.location()), refusal);
  EXPECT_EQ(open(place.location(), Database::Open_Mode::create_if_absent), refusal);

  place.foreign_program()->execute("CREATE TABLE site (id bigint, url text)");
  EXPECT_EQ(open(place.location(), Database::Open_Mode::create_if_absent), refusal);
  EXPECT_EQ(place.foreign_program()->tables(), (std::vector<std::string>{"site", "visits"}));
}

TEST_F(PostgreSQL_Schemas, may_have_any_name) {
  const std::string bare = place.location().substr(0, place.location().rfind('='));
  const std::string odd = bare + "=odd%20%22name%22%3B%20DROP";

  EXPECT_EQ(open(odd, Database::Open_Mode::create_if_absent), "no complaint");

  PostgreSQL_Program("public").execute("DROP SCHEMA \"odd \"\"name\"\"; DROP\" CASCADE");
}

TEST_F(PostgreSQL_Schemas, are_named_by_one_to_sixty_three_bytes) {
  const std::string bare = place.location().substr(0, place.location().rfind('=') + 1);
  const std::string rule = "the name of a schema has 1 to 63 bytes, none of them 0";

  EXPECT_EQ(open(bare), rule);
  EXPECT_EQ(open(bare + std::string(64, 'x')), rule);
  EXPECT_EQ(open(bare + "a%00b"), rule);
  EXPECT_EQ(open(bare + "a%4"),
            "the name of the schema in the database's URL has a broken % in it");
  EXPECT_EQ(open(bare + "a%gg"),
            "the name of the schema in the database's URL has a broken % in it");
}

TEST_F(PostgreSQL_Schemas, are_asked_for_by_urls_that_the_client_library_understands) {
  EXPECT_EQ(open("postgresql://user:secret@[::1/db"),
            "the database's URL is not of the form "
            "postgresql://user@host:port/database?schema=name");
  EXPECT_EQ(open("postgresql:///db?nonsense=1"),
            "the database's URL is not of the form "
            "postgresql://user@host:port/database?schema=name");
}

TEST_F(PostgreSQL_Schemas, of_servers_that_are_not_there_cannot_be_opened) {
  const std::string complaint =
      open("postgresql://user:secret@/db?host=/nonexistent&port=1234&schema=site");

  EXPECT_THAT(
      complaint,
      StartsWith("database postgresql://user@/db?host=/nonexistent&port=1234&schema=site: "));
  EXPECT_THAT(complaint, HasSubstr("/nonexistent/.s.PGSQL.1234"));
  EXPECT_THAT(complaint, testing::Not(HasSubstr("secret")));
}

TEST_F(PostgreSQL_Schemas, in_a_database_of_another_encoding_cannot_be_opened) {
  PostgreSQL_Program main("public");
  main.execute("CREATE DATABASE " + place.schema() +
               " TEMPLATE template0 ENCODING 'LATIN1' LC_COLLATE 'C' LC_CTYPE 'C'");
  std::string location = place.location();
  location.replace(location.find("/postgres?"), 10, "/" + place.schema() + "?");

  EXPECT_THAT(open(location), HasSubstr(": its encoding is not UTF8"));

  main.execute("DROP DATABASE " + place.schema());
}

TEST_F(PostgreSQL_Schemas, do_not_see_each_other_and_take_no_turns) {
  Site_At_Work one(
      {"postgresql", [] { return std::make_unique<PostgreSQL_Place>(); }, false, false});
  Site_At_Work two(
      {"postgresql", [] { return std::make_unique<PostgreSQL_Place>(); }, false, false});
  one.given_a_trigger_at_work();
  const auto impatient = (two.database(), two.open_again(std::chrono::milliseconds(1)));

  const Pass_Scope pass(one.database(), Site_At_Work::server_id);
  std::string complaint;
  std::thread elsewhere(
      [&] { complaint = complaint_of([&] { Pass_Scope(impatient, Site_At_Work::server_id); }); });
  elsewhere.join();

  EXPECT_EQ(complaint, "no complaint");
  EXPECT_EQ(two.foreign_program().count("trigger_record"), 0U);
}

}  // namespace
}  // namespace kuv::test
