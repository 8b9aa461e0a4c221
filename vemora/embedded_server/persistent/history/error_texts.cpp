// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/history/error_texts.h"

#include <charconv>
#include <cstddef>
#include <system_error>

namespace kuv::vemora::embedded_server {

std::string joined_texts(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) {
    joined += std::to_string(text.size());
    joined += '\n';
    joined += text;
    joined += '\n';
  }
  return joined;
}

std::optional<std::vector<std::string>> texts_in(std::string_view joined) {
  std::vector<std::string> texts;
  while (!joined.empty()) {
    std::size_t size = 0;
    const auto [end, fault] = std::from_chars(joined.data(), joined.data() + joined.size(), size);
    joined.remove_prefix(static_cast<std::size_t>(end - joined.data()));
    if (fault != std::errc() || joined.size() < 2 || size > joined.size() - 2 ||
        joined.front() != '\n' || joined[size + 1] != '\n') {
      return std::nullopt;
    }
    texts.emplace_back(joined.substr(1, size));
    joined.remove_prefix(size + 2);
  }
  return texts;
}

}  // namespace kuv::vemora::embedded_server
