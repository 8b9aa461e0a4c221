// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/operations/history/json_difference.h"
#include "vemora/operations/history/pass_documents.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

/// A trigger that one configuration has and the other lacks, or has in another form.
struct Different_Trigger {
  std::uint64_t id = 0;
  const Json::Value* before = nullptr;  ///< null of one that was added
  const Json::Value* after = nullptr;   ///< null of one that was removed
  std::vector<Changed_Field> fields;    ///< of one that has another form
};

/// How two pairs of documents differ. What it leads to are values of its own documents.
struct VEMORA_API Document_Difference {
  std::shared_ptr<const embedded_server::Json_Document> config_before;
  std::shared_ptr<const embedded_server::Json_Document> config_after;
  std::shared_ptr<const embedded_server::Json_Document> mapping_before;
  std::shared_ptr<const embedded_server::Json_Document> mapping_after;

  std::vector<Different_Trigger> triggers;  ///< ascending by id
  std::vector<Changed_Field> settings;      ///< of the configuration, beside the triggers
  List_Difference associations;
  std::vector<Changed_Field> mapping_settings;  ///< beside the associations

  /// Whether the documents say the same.
  bool is_empty() const;

  /// Whether they are the same byte for byte.
  bool has_same_texts() const;
};

/// Throws Database_Error if a document is damaged.
VEMORA_API Document_Difference difference_of_documents(const Document_Texts& before,
                                                       const Document_Texts& after);

}  // namespace kuv::vemora::operations
