// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <functional>
#include <vector>

#include "vemora/embedded_server/documents/document_warning.h"
#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/trigger_parser/trigger_config.h"
#include "vemora/trigger_parser/trigger_mapping.h"

namespace kuv::vemora::embedded_server {

/// The documents of a pass, or of a check, and what the parser made of them.
struct Read_Documents {
  const Json_Document& config;
  const Json_Document& mapping;  ///< the stored one where none was given
  const Trigger_Mapping& schedules;
  const std::vector<Trigger_Config>& triggers;  ///< in the order of the document
  bool are_valid;  ///< if not, neither schedules nor triggers are complete
  bool in_pass;    ///< which will read the site's subscriptions anyway
};

/// Says what an operator surely did not mean, though the parser has no fault to find. It is asked
/// once, in the transaction of the pass, before anything is written; it throws what the database
/// throws.
using Judge_Documents = std::function<std::vector<Document_Warning>(const Read_Documents&)>;

}  // namespace kuv::vemora::embedded_server
