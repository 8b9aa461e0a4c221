// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/postgresql_row_writer.h"

#include <fmt/format.h>

#include <cstdlib>
#include <functional>
#include <odb/exceptions.hxx>
#include <odb/pgsql/transaction.hxx>
#include <string>
#include <utility>

#include "vemora/embedded_server/persistent/engine/postgresql_arrays.h"
#include "vemora/embedded_server/persistent/engine/postgresql_connections.h"
#include "vemora/embedded_server/persistent/engine/postgresql_copy.h"
#include "vemora/embedded_server/persistent/engine/tables.h"

namespace kuv::vemora::embedded_server {
namespace {

constexpr std::size_t rows_of_a_statement = 10'000;
// A copy takes two round trips, so that it is worth it from there on.
constexpr std::size_t rows_worth_a_copy = 2 * rows_of_a_statement;
// Not all rows at once: a time limit of the server is for each statement.
constexpr std::size_t rows_of_a_copy = 100'000;
// Far below what the server takes for one parameter; a single row may have more.
constexpr std::size_t bytes_of_a_statement = 64U << 20;

template <class Row, class Get>
using Value_Of = std::decay_t<std::invoke_result_t<const Get&, const Row&>>;

/// Columns of a run of rows, an array each, as parameters of a statement.
template <class Row>
class Parameters {
 public:
  template <class Columns>
  explicit Parameters(const Columns& columns) {
    std::apply([this](const auto&... each) { (this->declare(each), ...); }, columns);
  }

  template <class Columns>
  void add(const Row& row, const Columns& columns) {
    std::size_t place = 0;
    std::apply(
        [&](const auto&... each) { (arrays_[place++].add(std::invoke(each.get, row)), ...); },
        columns);
    ++rows_;
  }

  std::size_t rows() const { return rows_; }

  bool full() {
    std::size_t bytes = 0;
    for (Array_Parameter& array : arrays_) {
      bytes += array.bytes().size();
    }
    return rows_ >= rows_of_a_statement || bytes >= bytes_of_a_statement;
  }

  /// Runs the statement; answers how many rows it touched.
  std::size_t run(const std::string& sql) {
    std::vector<const char*> values;
    std::vector<int> sizes;
    for (Array_Parameter& array : arrays_) {
      values.push_back(array.bytes().data());
      sizes.push_back(static_cast<int>(array.bytes().size()));
    }
    const std::vector<int> binary(arrays_.size(), 1);
    odb::pgsql::connection& connection = odb::pgsql::transaction::current().connection();
    const PostgreSQL_Result result = require_success(
        connection, PQexecParams(connection.handle(), sql.c_str(), static_cast<int>(types_.size()),
                                 types_.data(), values.data(), sizes.data(), binary.data(), 1));
    return std::strtoull(PQcmdTuples(result.get()), nullptr, 10);
  }

 private:
  template <class Get>
  void declare(const Column<Get>&) {
    using Type = Column_Type<Value_Of<Row, Get>>;
    arrays_.emplace_back(Type::element);
    types_.push_back(Type::oid);
  }

  std::vector<Array_Parameter> arrays_;
  std::vector<Oid> types_;
  std::size_t rows_ = 0;
};

/// The names of columns, each written as `pattern` says.
template <class Columns>
std::string list(const Columns& columns, const char* pattern, const char* separator = ", ") {
  std::string text;
  const auto append = [&](const char* name) {
    text += text.empty() ? "" : separator;
    text += fmt::format(fmt::runtime(pattern), name);
  };
  std::apply([&](const auto&... each) { (append(each.name), ...); }, columns);
  return text;
}

/// The parameters as a table: "unnest($1::bigint[], $2::text[])".
template <class Row, class Columns>
std::string unnested(const Columns& columns) {
  std::string text;
  std::size_t number = 0;
  const auto append = [&](const char* type) {
    text += fmt::format("{}${}::{}", number == 0 ? "" : ", ", number + 1, type);
    ++number;
  };
  std::apply(
      [&](const auto&... each) {
        (append(Column_Type<Value_Of<Row, decltype(each.get)>>::array), ...);
      },
      columns);
  return "unnest(" + text + ")";
}

template <class Row>
auto all_columns() {
  return std::tuple_cat(Table<Row>::keys, Table<Row>::others);
}

template <class Row>
std::string insert_statement() {
  return fmt::format("INSERT INTO {} AS stored ({}) SELECT * FROM {}", Table<Row>::name,
                     list(all_columns<Row>(), "{}"), unnested<Row>(all_columns<Row>()));
}

template <class Row>
std::string put_statement() {
  const std::string on_conflict =
      fmt::format("{} ON CONFLICT ({}) DO", insert_statement<Row>(), list(Table<Row>::keys, "{}"));
  constexpr auto& others = Table<Row>::others;
  if (std::tuple_size_v<std::decay_t<decltype(others)>> == 0) {
    return on_conflict + " NOTHING";
  }
  return fmt::format("{} UPDATE SET {} WHERE ({}) IS DISTINCT FROM ({})", on_conflict,
                     list(others, "{0} = excluded.{0}"), list(others, "stored.{}"),
                     list(others, "excluded.{}"));
}

template <class Row>
std::string erase_statement() {
  return fmt::format("DELETE FROM {} stored USING {} AS gone ({}) WHERE {}", Table<Row>::name,
                     unnested<Row>(Table<Row>::keys), list(Table<Row>::keys, "{}"),
                     list(Table<Row>::keys, "stored.{0} = gone.{0}", " AND "));
}

/// One statement over rows from `row` on, as many as it may have; answers where it stopped. `check`
/// is given how many rows it was for and how many it touched.
template <class Iterator, class Columns, class Check>
Iterator run_once(Iterator row, Iterator end, const Columns& columns, const std::string& sql,
                  Check check) {
  Parameters<std::decay_t<decltype(*row)>> parameters(columns);
  while (row != end && !parameters.full()) {
    parameters.add(*row++, columns);
  }
  check(parameters.rows(), parameters.run(sql));
  return row;
}

/// Runs a statement over all rows, as often as their number and size ask for.
template <class Row, class Columns, class Check>
void run_over(const std::vector<Row>& rows, const Columns& columns, const std::string& sql,
              Check check) {
  for (auto row = rows.begin(); row != rows.end();) {
    row = run_once(row, rows.end(), columns, sql, check);
  }
}

constexpr auto any_number = [](std::size_t, std::size_t) {};

/// The same as run_once() by COPY.
template <class Iterator>
Iterator copy_once(Iterator row, Iterator end) {
  using Row = std::decay_t<decltype(*row)>;
  const auto columns = all_columns<Row>();
  Copy_Into_Table copy(odb::pgsql::transaction::current().connection(), Table<Row>::name,
                       list(columns, "{}"));
  for (std::size_t number = 0;
       row != end && number < rows_of_a_copy && copy.bytes() < bytes_of_a_statement; ++number) {
    copy.begin_row(std::tuple_size_v<std::decay_t<decltype(columns)>>);
    std::apply([&](const auto&... each) { (copy.add(std::invoke(each.get, *row)), ...); }, columns);
    ++row;
  }
  copy.finish();
  return row;
}

/// The first of many rows are inserted as few are: what is in the way of all rows is told in the
/// same words, however many there are.
template <class Row>
void insert_many(const std::vector<Row>& rows) {
  auto row =
      run_once(rows.begin(), rows.end(), all_columns<Row>(), insert_statement<Row>(), any_number);
  while (row != rows.end()) {
    row = copy_once(row, rows.end());
  }
}

template <class Row>
void insert_rows(const std::vector<Row>& rows) {
  if (rows.size() <= rows_worth_a_copy) {
    run_over(rows, all_columns<Row>(), insert_statement<Row>(), any_number);
  } else {
    insert_many(rows);
  }
}

}  // namespace

void PostgreSQL_Row_Writer::insert_all(const Batch& batch) {
  std::visit([](const auto* rows) { insert_rows(*rows); }, batch);
}

void PostgreSQL_Row_Writer::put_all(const Batch& batch) {
  const auto put = [](const auto* rows) {
    using Row = typename std::decay_t<decltype(*rows)>::value_type;
    run_over(*rows, all_columns<Row>(), put_statement<Row>(), any_number);
  };
  std::visit(put, batch);
}

void PostgreSQL_Row_Writer::erase_all(const Batch& batch) {
  const auto erase = [](const auto* rows) {
    using Row = typename std::decay_t<decltype(*rows)>::value_type;
    run_over(*rows, Table<Row>::keys, erase_statement<Row>(),
             [](std::size_t wanted, std::size_t erased) {
               if (erased != wanted) {
                 throw odb::object_not_persistent();
               }
             });
  };
  std::visit(erase, batch);
}

}  // namespace kuv::vemora::embedded_server
