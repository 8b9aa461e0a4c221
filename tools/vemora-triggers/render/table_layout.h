// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kuv::vemora::tools {

using Row = std::vector<std::string>;

/// The lines of a table, each column as wide as its widest cell. A column without any text is left
/// out. With a width, the widest columns are made narrower until the table fits, as far as it can,
/// and what does not fit in a cell goes on in the next line. If it cannot fit, the columns that it
/// can do without, as numbers from 0, are left out, and a last line says so.
std::vector<std::string> lay_out_table(const Row& headings, const std::vector<Row>& rows,
                                       std::optional<std::size_t> width,
                                       const std::set<std::size_t>& dispensable = {});

/// The lines of a text that is no wider than a terminal. Words are broken only if there is no room
/// for them.
std::vector<std::string> fold(std::string_view text, std::size_t width);

}  // namespace kuv::vemora::tools
