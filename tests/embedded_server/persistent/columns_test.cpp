// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/odb_runtime.h"

// The columns of a table stand in the mapping and in the schema's numbered steps. Here both, and
// the list that bulk statements are made of, are held against the databases that really come about.

#include <set>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>

#include "embedded_server/persistent/database_test.h"
#include "records-odb-sqlite.h"
#include "records-odb.h"
#include "rows-odb-sqlite.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/engine/row_writer.h"
#include "vemora/embedded_server/persistent/engine/tables.h"

namespace kuv::test {
namespace {

using Names = std::set<std::string>;

/// A place in the list of all rows that are written in bulk.
template <std::size_t Place>
using Written_Row = std::remove_const_t<typename std::remove_pointer_t<
    std::variant_alternative_t<Place, Row_Writer::Batch>>::value_type>;

constexpr std::size_t written_rows = std::variant_size_v<Row_Writer::Batch>;

template <class Columns>
Names names_of(const Columns& columns) {
  Names names;
  std::apply([&names](const auto&... each) { (names.insert(each.name), ...); }, columns);
  return names;
}

class Columns : public Database_Test {
 protected:
  Names column_names(const std::string& table) {
    return texts(engine().name == "sqlite"
                     ? "SELECT name FROM pragma_table_info('" + table + "')"
                     : "SELECT column_name FROM information_schema.columns WHERE table_schema = "
                       "current_schema() AND table_name = '" +
                           table + "'");
  }

  Names key_names(const std::string& table) {
    return texts(engine().name == "sqlite"
                     ? "SELECT name FROM pragma_table_info('" + table + "') WHERE pk > 0"
                     : "SELECT attname FROM pg_index JOIN pg_attribute ON attrelid = indrelid AND "
                       "attnum = ANY (indkey) WHERE indisprimary AND indrelid = '" +
                           table + "'::regclass");
  }

  template <std::size_t Place>
  void compare_bulk_columns() {
    using Table_Of_Row = Table<Written_Row<Place>>;
    const std::string table = Table_Of_Row::name;
    Names all = names_of(Table_Of_Row::keys);
    const Names keys = key_names(table);
    if (!keys.empty() || engine().name == "sqlite") {  // PostgreSQL indexes no text of any length
      EXPECT_EQ(keys, all) << table;
    }
    all.merge(names_of(Table_Of_Row::others));
    EXPECT_EQ(column_names(table), all) << table;
  }

  template <std::size_t... Places>
  void compare_all_bulk_columns(std::index_sequence<Places...>) {
    (compare_bulk_columns<Places>(), ...);
  }

  /// Every mapped column is there, or the query fails; none is there besides, or the count differs.
  template <class Object>
  void compare_mapped_columns(const std::string& table) {
    using Traits = odb::access::object_traits_impl<Object, odb::id_sqlite>;
    odb::database& odb = database()->engine().odb();
    odb::transaction transaction(odb.begin());
    EXPECT_NO_THROW(odb.query<Object>()) << table;
    transaction.rollback();
    const std::size_t mapped = Traits::column_count;
    EXPECT_EQ(column_names(table).size(), mapped) << table;
  }

 private:
  Names texts(const std::string& query) {
    database();
    Names names;
    for (const Row& row : foreign_program().query(query)) {
      names.insert(row.front().value());
    }
    return names;
  }
};

TEST_P(Columns, of_bulk_statements_are_those_of_the_tables) {
  compare_all_bulk_columns(std::make_index_sequence<written_rows>());
}

TEST_P(Columns, of_the_mapping_are_those_of_the_tables) {
  using namespace kuv::vemora;
  compare_mapped_columns<server>("server");
  compare_mapped_columns<camera>("camera");
  compare_mapped_columns<schedule>("schedule");
  compare_mapped_columns<metadata_event_category>("event_category");
  compare_mapped_columns<trigger>("trigger_record");
  compare_mapped_columns<rows::Server_Tag>("server_tag");
  compare_mapped_columns<rows::Camera_Tag>("camera_tag");
  compare_mapped_columns<rows::Subscription_Tag>("subscription_tag");
  compare_mapped_columns<rows::Capability_Text>("capability_document");
  compare_mapped_columns<rows::Camera_Capability>("camera_capability");
  compare_mapped_columns<rows::Meta_Type>("meta_type");
  compare_mapped_columns<rows::Trigger_Schedule>("trigger_schedule");
  compare_mapped_columns<rows::Trigger_Source_Row>("trigger_source");
  compare_mapped_columns<rows::Subscription>("subscription");
  compare_mapped_columns<rows::Subscription_Camera>("subscription_camera");
  compare_mapped_columns<rows::Subscription_Trigger>("subscription_trigger");
  compare_mapped_columns<rows::ETA_Camera>("eta_camera");
  compare_mapped_columns<rows::ETA_Camera_Trigger>("eta_camera_trigger");
  compare_mapped_columns<rows::Id_Allocation>("id_allocation");
  compare_mapped_columns<rows::Pending_Camera>("pending_camera");
  compare_mapped_columns<rows::Document>("document");
  compare_mapped_columns<rows::History_Entry>("history_entry");
  compare_mapped_columns<rows::History_Text>("history_text");
  compare_mapped_columns<rows::Site>("site");
}

INSTANTIATE_TEST_SUITE_P(Engines, Columns, testing::ValuesIn(database_engines()), name_of_engine);

}  // namespace
}  // namespace kuv::test
