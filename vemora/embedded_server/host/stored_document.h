// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <optional>
#include <string>

#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// A stored document cannot be read, so that nothing can be said about what it configures; the
/// records beside it are not concerned.
class VEMORA_API Damaged_Document : public Database_Error {
 public:
  using Database_Error::Database_Error;
};

/// A stored document, however many values it has: whoever applied it chose a limit. It is empty
/// before the first one is stored. Nothing if it was damaged since.
VEMORA_API std::optional<Json_Document> find_stored_document(
    const std::optional<std::string>& text);

/// The same; throws Damaged_Document, with `name` in the text, if it was damaged.
VEMORA_API Json_Document read_stored_document(const std::optional<std::string>& text,
                                              const char* name);

}  // namespace kuv::vemora::embedded_server
