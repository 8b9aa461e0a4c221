// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// A text of a document with bytes that are no UTF-8.
struct Foreign_Text {
  std::size_t offset;   ///< where it begins, as Json::Value::getOffsetStart counts
  std::string message;  ///< for people; names Latin-1 if the document looks like it
};

/// All of them, in the order of the document.
VEMORA_API std::vector<Foreign_Text> foreign_texts(const Json_Document& document);

/// What to do about a document that has such texts: "save the document as UTF-8"
VEMORA_API const char* how_to_mend_foreign_texts(const Json_Document& document);

}  // namespace kuv::vemora::embedded_server
