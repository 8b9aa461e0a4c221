// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/operations/site/site_records.h"
#include "vemora/trigger_parser/trigger_config.h"
#include "vemora/trigger_parser/trigger_mapping.h"

namespace kuv::vemora::operations {

/// What a pass on some documents would lead to.
struct Unstored_Pass {
  // What the parser made of the documents.
  Trigger_Mapping schedules;
  std::vector<Trigger_Config> triggers;
  std::vector<std::string> errors;  ///< of single triggers
  Site_Records records;
};

/// Runs the real pass in the read-only pass that is open on this thread: nothing is stored, nobody
/// is told and nobody has to wait. From then on the open pass shows the site as the documents would
/// have it. Throws Database_Error, also where the documents are rejected.
Unstored_Pass run_unstored_pass(const std::shared_ptr<embedded_server::Database>& database,
                                std::uint64_t server_id, const Json::Value& config,
                                const Json::Value& mapping);

}  // namespace kuv::vemora::operations
