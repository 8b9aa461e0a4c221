// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/site_digest.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

#include "records-odb.h"
#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/engine/tables.h"
#include "vemora/embedded_server/persistent/index/row_reader.h"
#include "vemora/embedded_server/persistent/pass/documents.h"
#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/texts/sha256.h"

namespace kuv::vemora::embedded_server {
namespace {

/// Values one after the other, so that no two lists of values are the same bytes.
class Digest_Of_Values {
 public:
  void add(const std::string& text) {
    add_number('t', text.size());
    digest_.add(text);
  }

  template <class Number, class = std::enable_if_t<std::is_integral_v<Number>>>
  void add(Number number) {
    add_number('n', static_cast<std::uint64_t>(number));
  }

  template <class Value>
  void add(const std::optional<Value>& value) {
    if (value) {
      add(*value);
    } else {
      digest_.add("-");
    }
  }

  std::string finish() { return digest_.finish(); }

 private:
  void add_number(char kind, std::uint64_t number) {
    std::array<char, 9> bytes{kind};
    for (std::size_t i = 1; i < bytes.size(); ++i) {
      bytes[i] = static_cast<char>(number & 0xff);
      number >>= 8;
    }
    digest_.add({bytes.data(), bytes.size()});
  }

  SHA256 digest_;
};

template <class Row>
std::string key_columns() {
  const auto names = [](const auto&... columns) {
    return std::vector<std::string_view>{columns.name...};
  };
  return fmt::format("{}", fmt::join(std::apply(names, Table<Row>::keys), ", "));
}

template <class Row>
void add_table(odb::database& database, Digest_Of_Values& digest) {
  const auto add_values = [&digest](const auto&... values) { (digest.add(values), ...); };
  std::uint64_t count = 0;
  digest.add(std::string(Table<Row>::name));
  for_each_row<Row>(database, key_columns<Row>().c_str(), [&](const Row& row) {
    std::apply(add_values, values_of(row, Table<Row>::keys));
    std::apply(add_values, values_of(row, Table<Row>::others));
    ++count;
  });
  digest.add(count);
}

template <class... Rows>
void add_tables(odb::database& database, Digest_Of_Values& digest) {
  (add_table<Rows>(database, digest), ...);
}

}  // namespace

std::string digest_of_site(const std::shared_ptr<Database>& database) {
  return read(database, [&database](Site_Index&) {
    odb::database& tables = database->engine().odb();
    Digest_Of_Values digest;
    add_tables<server, rows::Server_Tag, camera, rows::Camera_Tag, rows::Capability_Text,
               rows::Camera_Capability, schedule, metadata_event_category, rows::Meta_Type, trigger,
               rows::Trigger_Schedule, rows::Trigger_Source_Row, rows::Subscription,
               rows::Subscription_Tag, rows::Subscription_Camera, rows::Subscription_Trigger,
               rows::ETA_Camera, rows::ETA_Camera_Trigger, rows::Pending_Camera>(tables, digest);
    const Documents documents = load_documents(tables);
    digest.add(documents.config);
    digest.add(documents.mapping);
    return digest.finish();
  });
}

}  // namespace kuv::vemora::embedded_server
