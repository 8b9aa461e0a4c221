// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kuv::vemora::Directive_Config_Processing {

/// One failure met while a document was processed.
struct Error {
  /// How far the document came.
  enum class Category : std::int32_t {
    /// The documents, or what they name, could not be read; nothing was applied.
    rejected_document = 0,
    /// The document was accepted; applying it failed in whole or in part.
    failed_processing = 1,
  };

  Category category = Category::rejected_document;  ///< how far the document came
  std::string message;                              ///< for people, complete
};

/// The outcome of handing over a new document.
struct Result {
  bool success = false;       ///< the document was parsed, applied and stored
  std::vector<Error> errors;  ///< on success the failures of single triggers, else exactly one
};

}  // namespace kuv::vemora::Directive_Config_Processing
