// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/table_layout.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <utility>

#include "vemora/embedded_server/texts/display_width.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::display_width;
using embedded_server::first_columns;

constexpr std::size_t gap = 2;              ///< between two columns
constexpr std::size_t narrowest = 10;       ///< no column is made narrower
constexpr std::size_t longest_word = 40;    ///< a longer one may be broken
constexpr std::size_t widest_column = 200;  ///< a wider cell extends its own row
constexpr std::size_t most_lines = 20;      ///< of a cell

/// The width of the longest part of a text that is not broken if there is room for it.
std::size_t width_of_words(std::string_view text) {
  std::size_t widest = 0;
  while (!text.empty()) {
    const std::size_t sign = std::min(text.find_first_of(" /,"), text.size() - 1);
    const std::string_view word = text.substr(0, sign + (text[sign] == ' ' ? 0 : 1));
    widest = std::max(widest, display_width(word));
    text.remove_prefix(sign + 1);
  }
  return std::min(widest, longest_word);
}

bool is_empty(const std::vector<Row>& rows, std::size_t column) {
  return !rows.empty() && std::all_of(rows.begin(), rows.end(),
                                      [column](const Row& row) { return row[column].empty(); });
}

std::size_t width_of(const std::vector<std::size_t>& widths) {
  return std::accumulate(widths.begin(), widths.end(), std::size_t{0}) +
         gap * (std::max<std::size_t>(widths.size(), 1) - 1);
}

/// Where to break a text that is too long for a line: after a blank, or after a sign within a word,
/// and only then anywhere.
std::size_t end_of_line(std::string_view text, std::size_t width) {
  const std::size_t most = first_columns(text, width).size();
  if (most == text.size()) {
    return most;
  }
  const std::string_view fitting = text.substr(0, most);
  if (text[most] == ' ') {
    return most;
  }
  if (const std::size_t blank = fitting.rfind(' '); blank != std::string_view::npos && blank > 0) {
    return blank;
  }
  if (const std::size_t sign = fitting.find_last_of("/,"); sign != std::string_view::npos) {
    return sign + 1;
  }
  return most == 0 ? text.size() : most;  // a character that is wider than the line
}

/// Takes a line off the beginning of a text.
std::string take_line(std::string_view& text, std::size_t width) {
  const std::size_t end = end_of_line(text, width);
  std::string line(text.substr(0, end));
  text.remove_prefix(end);
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  return line;
}

std::vector<std::string> lines_of_cell(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  do {
    if (lines.size() == most_lines) {
      lines.back() = embedded_server::shortened_to(lines.back() + " ...", width);
      break;
    }
    lines.push_back(take_line(text, width));
  } while (!text.empty());
  return lines;
}

class Layout {
 public:
  Layout(const Row& headings, const std::vector<Row>& rows, std::optional<std::size_t> width,
         const std::set<std::size_t>& left_out)
      : is_limited_(width.has_value()) {
    for (std::size_t column = 0; column < headings.size(); ++column) {
      if (!is_empty(rows, column) && left_out.count(column) == 0) {
        columns_.push_back(column);
        widths_.push_back(natural_width(headings, rows, column));
        const std::size_t heading = display_width(headings[column]);
        least_.push_back(std::max(heading, narrowest));
        words_.push_back(width ? width_of_longest_word(rows, column) : 0);
      }
    }
    for (const bool may_break_words : {false, true}) {
      while (width && width_of(widths_) > *width && narrow(may_break_words)) {
      }
    }
    fits_ = !width || width_of(widths_) <= *width;
  }

  bool fits() const { return fits_; }

  void append(const Row& row, std::vector<std::string>& lines) const {
    std::vector<std::vector<std::string>> cells;
    std::size_t height = 0;
    for (std::size_t place = 0; place < columns_.size(); ++place) {
      const std::string& cell = row[columns_[place]];
      cells.push_back(is_limited_ ? lines_of_cell(cell, widths_[place]) : std::vector{cell});
      height = std::max(height, cells.back().size());
    }
    for (std::size_t line = 0; line < height; ++line) {
      lines.push_back(line_of(cells, line));
    }
  }

 private:
  static std::size_t natural_width(const Row& headings, const std::vector<Row>& rows,
                                   std::size_t column) {
    std::size_t width = display_width(headings[column]);
    for (const Row& row : rows) {
      width = std::max(width, std::min(display_width(row[column]), widest_column));
    }
    return width;
  }

  static std::size_t width_of_longest_word(const std::vector<Row>& rows, std::size_t column) {
    std::size_t width = 0;
    for (const Row& row : rows) {
      width = std::max(width, width_of_words(row[column]));
    }
    return width;
  }

  /// Takes a column off the widest one that can be narrowed, the last of those; false if none can.
  bool narrow(bool may_break_words) {
    std::optional<std::size_t> widest;
    for (std::size_t place = 0; place < widths_.size(); ++place) {
      const std::size_t least = std::max(least_[place], may_break_words ? 0 : words_[place]);
      if (widths_[place] > least && (!widest || widths_[place] >= widths_[*widest])) {
        widest = place;
      }
    }
    if (widest) {
      --widths_[*widest];
    }
    return widest.has_value();
  }

  std::string line_of(const std::vector<std::vector<std::string>>& cells, std::size_t line) const {
    std::string text;
    for (std::size_t place = 0; place < cells.size(); ++place) {
      const std::string cell = line < cells[place].size() ? cells[place][line] : "";
      const std::size_t width = display_width(cell);
      text += cell + std::string(std::max(widths_[place], width) - width + gap, ' ');
    }
    return text.erase(text.find_last_not_of(' ') + 1);
  }

  bool is_limited_;
  bool fits_ = true;
  std::vector<std::size_t> columns_;  ///< those that are shown
  std::vector<std::size_t> widths_;
  std::vector<std::size_t> least_;  ///< widths below which they are not narrowed
  std::vector<std::size_t> words_;  ///< below which words have to be broken
};

std::vector<std::string> lines_of(const Layout& layout, const Row& headings,
                                  const std::vector<Row>& rows) {
  std::vector<std::string> lines;
  layout.append(headings, lines);
  for (const Row& row : rows) {
    layout.append(row, lines);
  }
  return lines;
}

/// Empty if none of the columns that are left out has any text.
std::string missing_columns(const Row& headings, const std::vector<Row>& rows,
                            const std::set<std::size_t>& left_out) {
  std::string names;
  for (const std::size_t column : left_out) {
    if (!is_empty(rows, column)) {
      names += (names.empty() ? "" : ", ") + headings[column];
    }
  }
  return names.empty() ? names : "Not shown for lack of room: " + names;
}

}  // namespace

std::vector<std::string> lay_out_table(const Row& headings, const std::vector<Row>& rows,
                                       std::optional<std::size_t> width,
                                       const std::set<std::size_t>& dispensable) {
  const Layout whole(headings, rows, width, {});
  const std::string missing = missing_columns(headings, rows, dispensable);
  if (whole.fits() || missing.empty()) {
    return lines_of(whole, headings, rows);
  }
  std::vector<std::string> lines =
      lines_of(Layout(headings, rows, width, dispensable), headings, rows);
  for (std::string& line : fold(missing, *width)) {
    lines.push_back(std::move(line));
  }
  return lines;
}

std::vector<std::string> fold(std::string_view text, std::size_t width) {
  std::vector<std::string> lines;
  do {
    lines.push_back(take_line(text, width));
  } while (!text.empty());
  return lines;
}

}  // namespace kuv::vemora::tools
