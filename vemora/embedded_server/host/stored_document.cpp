// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/host/stored_document.h"

#include <fmt/format.h>

#include <limits>
#include <utility>

namespace kuv::vemora::embedded_server {

std::optional<Json_Document> find_stored_document(const std::optional<std::string>& text) {
  try {
    Json_Document document(text.value_or("{}"), std::numeric_limits<std::size_t>::max());
    return document.value().isObject() ? std::make_optional(std::move(document)) : std::nullopt;
  } catch (const Document_Error&) {
    return std::nullopt;
  }
}

Json_Document read_stored_document(const std::optional<std::string>& text, const char* name) {
  if (auto document = find_stored_document(text)) {
    return *std::move(document);
  }
  throw Damaged_Document(
      fmt::format("the stored {} is damaged: it is not a JSON object; apply it again", name));
}

}  // namespace kuv::vemora::embedded_server
