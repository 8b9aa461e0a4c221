// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vemora-triggers/invocation/options.h"
#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/terminal.h"

namespace kuv::vemora::tools {

/// Whether a text comes before another: numbers in them compare by their value, the rest by bytes.
bool is_before(std::string_view left, std::string_view right);

/// What a list looks like. `Record` is what its elements are made of.
template <class Record, class To_Json, class To_Row>
struct List_Form {
  Row headings;
  To_Json to_json;
  To_Row to_row;  ///< the cells, whole
};

template <class Record, class To_Json, class To_Row>
List_Form<Record, To_Json, To_Row> list_form(Row headings, To_Json to_json, To_Row to_row) {
  return {std::move(headings), to_json, to_row};
}

/// Prints records in their order, or in that of a column: as a JSON list, or as a table.
template <class Record, class To_Json, class To_Row>
void print_list(const Options& options, const std::vector<const Record*>& records,
                const std::optional<std::size_t>& sort_column,
                const List_Form<Record, To_Json, To_Row>& form) {
  std::vector<std::pair<Row, const Record*>> rows;
  rows.reserve(records.size());
  const bool needs_cells = !options.json || sort_column;
  for (const Record* const record : records) {
    rows.emplace_back(needs_cells ? form.to_row(*record) : Row(), record);
  }
  if (sort_column) {
    std::stable_sort(rows.begin(), rows.end(), [&](const auto& left, const auto& right) {
      return is_before(left.first[*sort_column], right.first[*sort_column]);
    });
  }
  if (options.json) {
    Json::Value list(Json::arrayValue);
    for (const auto& row : rows) {
      list.append(form.to_json(*row.second));
    }
    print_json(list);
    return;
  }
  std::vector<Row> cells;
  cells.reserve(rows.size());
  for (auto& row : rows) {
    cells.push_back(std::move(row.first));
  }
  print_table(form.headings, cells);
}

/// The records themselves, or those that shared pointers lead to.
template <class Record>
std::vector<const Record*> addresses(const std::vector<Record>& records) {
  std::vector<const Record*> found;
  found.reserve(records.size());
  for (const Record& record : records) {
    found.push_back(&record);
  }
  return found;
}

template <class Record>
std::vector<const Record*> addresses(const std::vector<std::shared_ptr<Record>>& records) {
  std::vector<const Record*> found;
  found.reserve(records.size());
  for (const std::shared_ptr<Record>& record : records) {
    found.push_back(record.get());
  }
  return found;
}

}  // namespace kuv::vemora::tools
