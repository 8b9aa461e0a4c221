// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/postgresql_copy.h"

#include <fmt/format.h>

#include <memory>
#include <string_view>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/engine/postgresql_connections.h"

namespace kuv::vemora::embedded_server {
namespace {

using namespace std::string_view_literals;

// What every copy begins with: the signature, no flags, no extension.
constexpr std::string_view head = "PGCOPY\n\377\r\n\0\0\0\0\0\0\0\0\0"sv;
// In the place of the number of columns: there are no more rows.
constexpr std::uint16_t end_of_rows = 0xFFFF;

constexpr std::size_t bytes_of_a_piece = 64U << 10;

void begin(odb::pgsql::connection& connection, const std::string& sql, ExecStatusType wanted) {
  PostgreSQL_Result result(PQexec(connection.handle(), sql.c_str()), &PQclear);
  if (PQresultStatus(result.get()) != wanted) {
    require_success(connection, result.release());
    throw Database_Error("the server does not copy");
  }
}

/// How it ended: the first fault, if there was one.
void end(odb::pgsql::connection& connection) {
  PostgreSQL_Result first(PQgetResult(connection.handle()), &PQclear);
  while (PGresult* const next = first ? PQgetResult(connection.handle()) : nullptr) {
    PQclear(next);
  }
  require_success(connection, first.release());
}

template <class Number>
Number number_at(std::string_view bytes, std::size_t place) {
  Number number = 0;
  for (std::size_t index = 0; index < sizeof number; ++index) {
    number = static_cast<Number>(number << 8U) | static_cast<unsigned char>(bytes[place + index]);
  }
  return number;
}

/// Takes pairs out of the pieces of a copy, however they were cut.
class Pair_Reader {
 public:
  explicit Pair_Reader(const std::function<void(std::uint64_t, std::uint64_t)>& take)
      : take_(take) {}

  void read(std::string_view piece) {
    if (!rest_.empty()) {
      rest_ += piece;
      const std::string whole = std::move(rest_);
      rest_ = whole.substr(take_from(whole));
    } else {
      rest_ = piece.substr(take_from(piece));
    }
  }

  void finish() const {
    if (!at_end_) {
      throw unknown_form();
    }
  }

 private:
  static constexpr std::size_t number_size = 4 + 8;  // its own, and the number itself
  static constexpr std::size_t row_size = 2 + 2 * number_size;

  /// Answers how many bytes it took.
  std::size_t take_from(std::string_view bytes) {
    std::size_t place = 0;
    if (!begun_ && bytes.size() >= head.size()) {
      begun_ = bytes.substr(0, head.size()) == head;
      place = head.size();
      if (!begun_) {
        throw unknown_form();
      }
    }
    while (begun_ && bytes.size() - place >= 2 && !at_end_) {
      if (number_at<std::uint16_t>(bytes, place) == end_of_rows) {
        at_end_ = true;
        place += 2;
      } else if (bytes.size() - place < row_size) {
        break;
      } else {
        take_row(bytes.substr(place, row_size));
        place += row_size;
      }
    }
    return place;
  }

  void take_row(std::string_view row) {
    if (number_at<std::uint16_t>(row, 0) != 2 || number_at<std::uint32_t>(row, 2) != 8 ||
        number_at<std::uint32_t>(row, 2 + number_size) != 8) {
      throw unknown_form();
    }
    take_(number_at<std::uint64_t>(row, 6), number_at<std::uint64_t>(row, 6 + number_size));
  }

  static Database_Error unknown_form() {
    return Database_Error("the server sent rows in a form that is not known");
  }

  const std::function<void(std::uint64_t, std::uint64_t)>& take_;
  std::string rest_;
  bool begun_ = false;
  bool at_end_ = false;
};

}  // namespace

Copy_Into_Table::Copy_Into_Table(odb::pgsql::connection& connection, const std::string& table,
                                 const std::string& columns)
    : connection_(connection) {
  begin(connection, fmt::format("COPY {} ({}) FROM STDIN (FORMAT binary)", table, columns),
        PGRES_COPY_IN);
  values_.append(head);
}

void Copy_Into_Table::begin_row(std::size_t columns) {
  if (values_.bytes().size() >= bytes_of_a_piece) {
    send();
  }
  values_.append(static_cast<std::uint16_t>(columns));
}

/// Where it fails, finish() learns why.
void Copy_Into_Table::send() {
  PQputCopyData(connection_.handle(), values_.bytes().data(),
                static_cast<int>(values_.bytes().size()));
  sent_ += values_.bytes().size();
  values_.clear();
}

void Copy_Into_Table::finish() {
  values_.append(end_of_rows);
  send();
  PQputCopyEnd(connection_.handle(), nullptr);
  end(connection_);
}

void copy_pairs(odb::pgsql::connection& connection, const std::string& statement,
                const std::function<void(std::uint64_t, std::uint64_t)>& take) {
  begin(connection, fmt::format("COPY ({}) TO STDOUT (FORMAT binary)", statement), PGRES_COPY_OUT);
  Pair_Reader reader(take);
  char* piece = nullptr;
  int size = 0;
  while ((size = PQgetCopyData(connection.handle(), &piece, 0)) > 0) {
    const std::unique_ptr<char, decltype(&PQfreemem)> owned(piece, &PQfreemem);
    reader.read({owned.get(), static_cast<std::size_t>(size)});
  }
  end(connection);
  reader.finish();
}

}  // namespace kuv::vemora::embedded_server
