#pragma once

#include <memory>
#include <vector>

#include "vemora/embedded_server/documents/document_warning.h"
#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/embedded_server/persistent/database.h"
#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora::embedded_server {

/// Appends a warning for each text of an active trigger that this database cannot hold: the trigger
/// then fails, and its own error does not say why. `triggers` were parsed from the document.
void warn_of_unstorable_texts(const std::shared_ptr<Database>& database,
                              const std::vector<Trigger_Config>& triggers,
                              const Json_Document& document,
                              std::vector<Document_Warning>& warnings);

}  // namespace kuv::vemora::embedded_server
