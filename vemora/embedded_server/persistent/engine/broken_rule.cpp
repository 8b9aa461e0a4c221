// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/engine/broken_rule.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

namespace kuv::vemora::embedded_server {
namespace {

/// Where the rule begins in the step; at its end where it is not there.
std::size_t begin_of(std::string_view step, std::string_view rule) {
  return std::min({step.size(), step.find(fmt::format("CONSTRAINT {} ", rule)),
                   step.find(fmt::format("CONSTRAINT {}\n", rule))});
}

/// The table that the last statement before `place` makes or changes.
std::string_view table_before(std::string_view step, std::size_t place) {
  constexpr std::string_view word = "TABLE ";
  constexpr std::string_view mark = "new_";
  const std::size_t found = step.rfind(word, place);
  if (found == std::string_view::npos) {
    return {};
  }
  std::string_view name = step.substr(found + word.size());
  name = name.substr(0, name.find_first_of(" (\n"));
  return name.substr(0, mark.size()) == mark ? name.substr(mark.size()) : name;
}

/// What stands in the next parentheses from `place` on, in one line.
std::string condition_from(std::string_view step, std::size_t place) {
  const std::size_t begin = step.find('(', place);
  std::string condition;
  int depth = 0;
  for (std::size_t at = begin; at < step.size(); ++at) {
    depth += step[at] == '(' ? 1 : step[at] == ')' ? -1 : 0;
    const bool is_space = step[at] == ' ' || step[at] == '\n';
    if (!is_space || condition.back() != ' ') {
      condition += is_space ? ' ' : step[at];
    }
    if (depth == 0) {
      break;
    }
  }
  return condition;
}

std::string words_of(std::string_view step, std::string_view rule) {
  const std::size_t place = begin_of(step, rule);
  const std::string_view table = table_before(step, place);
  return fmt::format(
      "in table {}, a row breaks the rule {}; find it with \"SELECT * FROM {} WHERE NOT {}\", "
      "correct or delete it, and try again",
      table, rule, table, condition_from(step, place));
}

}  // namespace

Broken_Rule::Broken_Rule(std::string_view step, std::string_view rule)
    : Unfit_For_Step(words_of(step, rule)) {}

}  // namespace kuv::vemora::embedded_server
