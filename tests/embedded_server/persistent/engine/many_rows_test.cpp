// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/odb_runtime.h"

// Few rows and many may be written, and links read, in other ways: what comes of it is the same.

#include <fmt/format.h>

#include <limits>
#include <odb/database.hxx>
#include <odb/transaction.hxx>
#include <stdexcept>
#include <typeinfo>

#include "embedded_server/persistent/database_test.h"
#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/engine/row_writer.h"
#include "vemora/embedded_server/persistent/engine/tables.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"

namespace kuv::test {
namespace {

using vemora::rows::History_Entry;
using vemora::rows::Subscription_Trigger;
using vemora::rows::Trigger_Source_Row;

constexpr std::size_t few = 3;
constexpr std::size_t many = 20'503;
// Subscriptions by triggers: more than one copy takes, and more triggers than a tile.
constexpr std::uint64_t records_of_links = 600;
constexpr std::uint64_t triggers_of_links = 200;

constexpr auto least = std::numeric_limits<std::int64_t>::min();
constexpr auto most = std::numeric_limits<std::int64_t>::max();

/// The values themselves, which outlive the row.
template <class Columns, class Row>
auto copies(const Row& row, const Columns& columns) {
  return std::apply([](const auto&... values) { return std::make_tuple(values...); },
                    values_of(row, columns));
}

template <class Row>
auto key(const Row& row) {
  return copies(row, Table<Row>::keys);
}

template <class Row>
auto whole(const Row& row) {
  return std::tuple_cat(key(row), copies(row, Table<Row>::others));
}

/// Numbers of all sizes, none twice.
std::uint64_t number(std::size_t index) {
  switch (index % 3) {
    case 0:
      return index;
    case 1:
      return ~std::uint64_t{0} - index;
    default:
      return (std::uint64_t{1} << 63U) + index;
  }
}

std::string text(std::size_t index) {
  const std::vector<std::string> texts{"",       "a",        "ä€😀",
                                       "\t\n\\", "\\N, \"'", std::string(3000, 'x')};
  return texts[index % texts.size()];
}

Trigger_Source_Row source(std::size_t index) {
  Trigger_Source_Row row;
  row.key = {number(index), index % 2 == 0 ? 0U : 2147483647U};
  if (index % 4 == 0) {
    row.onvif_topic = "topic" + text(index);
  } else if (index % 4 == 1) {
    row.type = 2;
    row.object_type = "type" + text(index);
    row.motion_required = index % 8 == 1;
    row.activity_mode = 1;
    row.min_duration_us = most;
    row.dropout_us = 0;
  } else {
    row.type = index % 4 == 2 ? 2147483647 : 1;
  }
  return row;
}

History_Entry entry(std::size_t index) {
  History_Entry row;
  row.pass = index + 1;
  row.at = index % 2 == 0 ? least : most;
  if (index % 3 != 0) {
    row.author = text(index);
  }
  row.command = text(index + 1);
  row.status = static_cast<std::int32_t>(index % 3);
  if (index % 5 == 0) {
    row.note = text(index + 2);
  }
  row.triggers_created = text(index + 3);
  row.trigger_writes = number(index);
  return row;
}

template <class Row_Of>
auto rows_of(std::size_t number_of_rows, Row_Of row_of) {
  std::vector<decltype(row_of(0))> rows;
  for (std::size_t index = 0; index < number_of_rows; ++index) {
    rows.push_back(row_of(index));
  }
  return rows;
}

std::vector<Subscription_Trigger> links() {
  std::vector<Subscription_Trigger> links;
  for (std::uint64_t record = 0; record < records_of_links; ++record) {
    for (std::uint64_t linked = 0; linked < triggers_of_links; ++linked) {
      links.push_back({{number(record), number(linked)}});
    }
  }
  return links;
}

class Many_Rows : public Database_Test {
 protected:
  template <class Action>
  void in_transaction(Action action) {
    odb::database& odb = database()->engine().odb();
    odb::transaction transaction(odb.begin());
    action(odb);
    transaction.commit();
  }

  template <class Row>
  void insert(const std::vector<Row>& rows) {
    in_transaction([&](odb::database&) { database()->engine().rows().insert(rows); });
  }

  template <class Row>
  void expect_to_come_back(const std::vector<Row>& rows) {
    insert(rows);
    std::map<decltype(key(rows.front())), decltype(whole(rows.front()))> stored;
    in_transaction([&](odb::database& odb) {
      for_each_row<Row>(odb, "1", [&](const Row& row) { stored.emplace(key(row), whole(row)); });
    });
    ASSERT_EQ(stored.size(), rows.size());
    for (const Row& row : rows) {
      ASSERT_TRUE(stored.at(key(row)) == whole(row));
    }
  }
};

INSTANTIATE_TEST_SUITE_P(Engines, Many_Rows, testing::ValuesIn(database_engines()), name_of_engine);

TEST_P(Many_Rows, come_back_with_their_numbers_texts_and_gaps) {
  expect_to_come_back(rows_of(many, source));
  expect_to_come_back(rows_of(many, entry));
  expect_to_come_back(links());
  expect_to_come_back(rows_of(many, [](std::size_t index) {
    return vemora::schedule{number(index), text(index), index % 2 == 0};
  }));
}

TEST_P(Many_Rows, of_links_are_read_as_other_rows_are) {
  std::vector<Subscription_Trigger> written = links();
  insert(written);
  using Pairs = std::vector<std::pair<std::uint64_t, std::uint64_t>>;
  Pairs read;
  Pairs read_as_rows;
  Pairs none;

  in_transaction([&](odb::database& odb) {
    for_each_link(odb, "subscription_trigger", [&](std::uint64_t record, std::uint64_t linked) {
      read.emplace_back(record, linked);
    });
    for_each_row<Subscription_Trigger>(
        odb, "linked_id, record_id", [&](const Subscription_Trigger& row) {
          read_as_rows.emplace_back(row.key.record_id, row.key.linked_id);
        });
    for_each_link(odb, "eta_camera_trigger", [&](std::uint64_t record, std::uint64_t linked) {
      none.emplace_back(record, linked);
    });
  });

  EXPECT_EQ(read.size(), written.size());
  EXPECT_TRUE(read == read_as_rows);
  EXPECT_TRUE(none.empty());
}

TEST_P(Many_Rows, that_nobody_wants_to_the_end_leave_the_database_as_it_was) {
  insert(links());
  std::size_t taken = 0;
  EXPECT_THROW(in_transaction([&](odb::database& odb) {
                 for_each_link(odb, "subscription_trigger", [&](std::uint64_t, std::uint64_t) {
                   if (++taken == 1000) {
                     throw std::runtime_error("enough");
                   }
                 });
               }),
               std::runtime_error);

  insert(rows_of(few, entry));
  EXPECT_EQ(foreign_program().count("history_entry"), few);
}

/// What a fault is, whoever throws it.
struct Fault {
  std::string type;
  std::string words;
};

std::ostream& operator<<(std::ostream& stream, const Fault& fault) {
  return stream << fault.type << ": " << fault.words;
}

bool operator==(const Fault& left, const Fault& right) {
  return left.type == right.type && left.words == right.words;
}

class Faults_Of_Many_Rows : public testing::Test, public Database_Fixture {
 protected:
  Faults_Of_Many_Rows() : Database_Fixture(postgresql_engine()) {}

  /// What inserting them comes to.
  template <class Row>
  Fault fault_of(Database& database, const std::vector<Row>& rows) {
    odb::transaction transaction(database.engine().odb().begin());
    try {
      database.engine().rows().insert(rows);
    } catch (const std::exception& fault) {
      return {typeid(fault).name(), database.engine().describe(fault)};
    }
    return {"none", ""};
  }

  /// Few rows and many, the last of which `row_of` spoils, meet the same fault; nothing of them is
  /// stored, and others are stored afterwards.
  template <class Row_Of, class Spoil>
  Fault expect_the_same_fault(Database& spoilt, Row_Of row_of, Spoil spoil) {
    const auto before = foreign_program().everything();
    std::vector<Fault> faults;
    for (const std::size_t number_of_rows : {few, many}) {
      auto rows = rows_of(number_of_rows, row_of);
      spoil(rows.back());
      faults.push_back(fault_of(spoilt, rows));
      EXPECT_EQ(fault_of(*database(), rows_of(few, source)).type, "none");
    }
    EXPECT_EQ(faults[0], faults[1]);
    EXPECT_NE(faults[0].type, "none");
    EXPECT_EQ(foreign_program().everything(), before);
    return faults[1];
  }

  /// The server does that when it is given the entry of pass 77777.
  void given_a_trap(const std::string& statement) {
    foreign_program().execute(fmt::format(
        "CREATE FUNCTION trap() RETURNS trigger LANGUAGE plpgsql AS $$BEGIN IF NEW.pass = 77777 "
        "THEN {}; END IF; RETURN NEW; END$$; CREATE TRIGGER trap BEFORE INSERT ON history_entry "
        "FOR EACH ROW EXECUTE FUNCTION trap()",
        statement));
  }

  Fault expect_the_same_fault_in_the_trap() {
    return expect_the_same_fault(*database(), entry, [](History_Entry& row) { row.pass = 77777; });
  }

  std::shared_ptr<Database> open_with(const std::string& parameter) {
    return Database::open(location() + "&" + parameter, Database::Open_Mode::existing);
  }
};

TEST_F(Faults_Of_Many_Rows, tell_of_a_row_that_is_there) {
  EXPECT_EQ(fault_of(*database(), rows_of(few, entry)).type, "none");  // and rolled back
  foreign_program().execute(
      "INSERT INTO history_entry SELECT 77777, 0, NULL, '', NULL, 0, 0, NULL, NULL, NULL, '', '', "
      "'', '', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0");

  EXPECT_EQ(expect_the_same_fault_in_the_trap().words,
            "duplicate key value violates unique constraint \"history_entry_pkey\"");
}

TEST_F(Faults_Of_Many_Rows, tell_of_texts_that_the_server_does_not_hold) {
  database();
  EXPECT_EQ(expect_the_same_fault(*database(), entry,
                                  [](History_Entry& row) { row.command = std::string("a\0b", 3); })
                .words,
            "invalid byte sequence for encoding \"UTF8\": 0x00");
  EXPECT_EQ(
      expect_the_same_fault(*database(), entry, [](History_Entry& row) { row.command = "a\xff"; })
          .words,
      "invalid byte sequence for encoding \"UTF8\": 0xff");
}

TEST_F(Faults_Of_Many_Rows, tell_of_a_broken_rule) {
  EXPECT_EQ(expect_the_same_fault(*database(), source, [](auto& row) { row.min_duration_us = -1; })
                .words.substr(0, 60),
            "new row for relation \"trigger_source\" violates check constra");
}

TEST_F(Faults_Of_Many_Rows, tell_of_a_full_disk) {
  given_a_trap("RAISE 'could not extend file: No space left on device' USING ERRCODE = '53100'");

  EXPECT_EQ(expect_the_same_fault_in_the_trap().words,
            "could not extend file: No space left on device");
}

TEST_F(Faults_Of_Many_Rows, tell_of_a_lost_connection) {
  given_a_trap("PERFORM pg_terminate_backend(pg_backend_pid())");

  EXPECT_EQ(expect_the_same_fault_in_the_trap().words, "the connection to the server was lost");
}

TEST_F(Faults_Of_Many_Rows, tell_of_a_statement_that_takes_too_long) {
  given_a_trap("PERFORM pg_sleep(60)");
  const auto hurried = open_with("options=-c%20statement_timeout%3D1000");

  EXPECT_EQ(
      expect_the_same_fault(*hurried, entry, [](History_Entry& row) { row.pass = 77777; }).words,
      "canceling statement due to statement timeout");
}

TEST_F(Faults_Of_Many_Rows, tell_of_a_server_that_takes_no_writes) {
  database();
  const auto standby = open_with("options=-c%20default_transaction_read_only%3Don");

  EXPECT_EQ(expect_the_same_fault(*standby, entry, [](History_Entry&) {}).words,
            "cannot execute INSERT in a read-only transaction");
}

TEST_F(Faults_Of_Many_Rows, tell_of_a_connection_that_is_lost_while_links_are_read) {
  const auto all = links();
  {
    odb::transaction transaction(database()->engine().odb().begin());
    database()->engine().rows().insert(all);
    transaction.commit();
  }
  const auto read = [&](std::size_t cut_at) {
    std::size_t taken = 0;
    odb::database& odb = database()->engine().odb();
    odb::transaction transaction(odb.begin());
    for_each_link(odb, "subscription_trigger", [&](std::uint64_t, std::uint64_t) {
      if (++taken == cut_at) {
        foreign_program().execute(
            "SELECT pg_terminate_backend(pid, 10000) FROM pg_locks WHERE relation = "
            "'subscription_trigger'::regclass AND pid <> pg_backend_pid()");
      }
    });
    return taken;
  };

  try {
    read(10);
    FAIL() << "all was read";
  } catch (const std::exception& fault) {
    EXPECT_EQ(database()->engine().describe(fault), "the connection to the server was lost");
  }

  EXPECT_EQ(read(0), all.size());
}

}  // namespace
}  // namespace kuv::test
