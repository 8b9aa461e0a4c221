#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kuv::vemora::tools {

using Row = std::vector<std::string>;

/// The lines of a table, each column as wide as its widest cell. A column without any text is left
/// out. With a width, the widest columns are made narrower until the table fits, as far as it can,
/// and what does not fit in a cell goes on in the next line.
std::vector<std::string> lay_out_table(const Row& headings, const std::vector<Row>& rows,
                                       std::optional<std::size_t> width);

}  // namespace kuv::vemora::tools
