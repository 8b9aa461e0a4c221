// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/history/id_ranges.h"

#include <fmt/format.h>

#include <charconv>
#include <string_view>
#include <system_error>

#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::vemora::embedded_server {
namespace {

constexpr std::uint64_t most_ids = 10'000'000;

[[noreturn]] void fail_as_damaged(std::string_view ranges) {
  throw Database_Error(fmt::format("the history is damaged: \"{}\" is no list of ids", ranges));
}

/// Takes a number off the beginning of a text.
std::uint64_t take_number(std::string_view& rest, std::string_view whole) {
  std::uint64_t number = 0;
  const auto [end, fault] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
  if (fault != std::errc()) {
    fail_as_damaged(whole);
  }
  rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
  return number;
}

bool take(char wanted, std::string_view& rest) {
  if (rest.empty() || rest.front() != wanted) {
    return false;
  }
  rest.remove_prefix(1);
  return true;
}

}  // namespace

std::string ranges_of(const std::set<std::uint64_t>& ids) {
  std::string text;
  for (auto id = ids.begin(); id != ids.end();) {
    const std::uint64_t first = *id;
    std::uint64_t last = first;
    while (++id != ids.end() && *id == last + 1) {
      last = *id;
    }
    text += text.empty() ? "" : " ";
    text += first == last ? fmt::format("{}", first) : fmt::format("{}-{}", first, last);
  }
  return text;
}

std::set<std::uint64_t> ids_in(const std::string& ranges) {
  std::set<std::uint64_t> ids;
  std::string_view rest = ranges;
  while (!rest.empty()) {
    const std::uint64_t first = take_number(rest, ranges);
    const std::uint64_t last = take('-', rest) ? take_number(rest, ranges) : first;
    const bool goes_on = take(' ', rest);
    if (last < first || last - first >= most_ids - ids.size() || goes_on == rest.empty()) {
      fail_as_damaged(ranges);
    }
    for (std::uint64_t id = first; id != last; ++id) {
      ids.insert(ids.end(), id);
    }
    ids.insert(ids.end(), last);
  }
  return ids;
}

}  // namespace kuv::vemora::embedded_server
