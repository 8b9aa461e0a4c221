// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/odb_runtime.h"

#include "vemora/embedded_server/persistent/history/give_up_the_oldest.h"

#include <odb/database.hxx>
#include <odb/transaction.hxx>
#include <set>

#include "embedded_server/persistent/database_test.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/engine.h"

namespace kuv::test {
namespace {

/// The digest of a text in these tests.
std::string called(char name) {
  return std::string(64, name);
}

class Oldest_Of_History : public Database_Test {
 protected:
  void given_text(char name, std::size_t size) {
    in_transaction([&](odb::database& odb) {
      vemora::rows::History_Text row;
      row.digest = called(name);
      row.size = size;
      row.text.assign(size, name);
      odb.persist(row);
    });
  }

  void given_entry(std::uint64_t pass, char config, char mapping, char errors = ' ') {
    in_transaction([&](odb::database& odb) {
      vemora::rows::History_Entry row;
      row.pass = pass;
      row.status = 1;
      row.config = called(config);
      row.mapping = called(mapping);
      if (errors != ' ') {
        row.errors = called(errors);
        row.error_count = 1;
      }
      odb.persist(row);
    });
  }

  void give_up(std::uint64_t last_pass, bool has_new_texts, std::size_t most_bytes) {
    in_transaction(
        [&](odb::database& odb) { give_up_the_oldest(odb, last_pass, has_new_texts, most_bytes); });
  }

  std::set<std::string> answers_to(const std::string& query) {
    std::set<std::string> found;
    for (const Row& row : foreign_program().query(query)) {
      found.insert(row.front().value());
    }
    return found;
  }

  /// Their names, one after the other.
  std::string texts() {
    std::string names;
    for (const std::string& digest : answers_to("SELECT digest FROM history_text")) {
      names += digest.front();
    }
    return names;
  }

  std::set<std::string> passes() { return answers_to("SELECT pass FROM history_entry"); }

 private:
  template <class Action>
  void in_transaction(Action action) {
    odb::database& odb = database()->engine().odb();
    odb::transaction transaction(odb.begin());
    action(odb);
    transaction.commit();
  }
};

TEST_P(Oldest_Of_History, texts_go_first_when_they_are_too_large_together) {
  for (const char name : {'a', 'b', 'c', 'd', 'm'}) {
    given_text(name, 100);
  }
  given_entry(1, 'a', 'm');
  given_entry(2, 'b', 'm', 'c');
  given_entry(3, 'd', 'm');

  give_up(3, true, 500);
  EXPECT_EQ(texts(), "abcdm");
  give_up(3, true, 499);
  EXPECT_EQ(texts(), "bcdm");
  give_up(3, true, 200);
  EXPECT_EQ(texts(), "dm");
  EXPECT_EQ(passes(), (std::set<std::string>{"1", "2", "3"}));
}

TEST_P(Oldest_Of_History, a_text_is_as_new_as_the_newest_entry_that_names_it) {
  for (const char name : {'a', 'b', 'c', 'm'}) {
    given_text(name, 100);
  }
  given_entry(1, 'a', 'm');
  given_entry(2, 'b', 'm');
  given_entry(3, 'c', 'm');
  given_entry(4, 'a', 'm');

  give_up(4, true, 300);
  EXPECT_EQ(texts(), "acm");
}

TEST_P(Oldest_Of_History, entries_go_with_their_texts_when_there_are_too_many) {
  given_text('a', 1);
  given_text('b', 1);
  given_text('m', 1);
  given_entry(1, 'a', 'm');
  given_entry(2, 'b', 'm');

  give_up(1000, false, 100);
  EXPECT_EQ(texts(), "abm");
  give_up(1001, false, 100);
  EXPECT_EQ(passes(), std::set<std::string>{"2"});
  EXPECT_EQ(texts(), "bm");
}

TEST_P(Oldest_Of_History, a_text_that_is_too_large_by_itself_is_not_kept) {
  given_text('a', 10);
  given_text('b', 101);
  given_entry(1, 'a', 'a');
  given_entry(2, 'b', 'a');

  give_up(2, true, 100);
  EXPECT_EQ(texts(), "a");
}

INSTANTIATE_TEST_SUITE_P(Engines, Oldest_Of_History, testing::ValuesIn(database_engines()),
                         name_of_engine);

}  // namespace
}  // namespace kuv::test
