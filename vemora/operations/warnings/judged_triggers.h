// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>
#include <vector>

#include "vemora/embedded_server/host/document_judge.h"
#include "vemora/operations/warnings/found_warnings.h"
#include "vemora/platform/tags/tag_info.h"

namespace kuv::vemora::operations {

/// An element of "triggers", with what the parser made of it.
struct Judged_Trigger {
  const Json::Value& element;
  Subject subject;
  const Trigger_Config* config;  ///< null: left out, or not known in a faulty document
  bool is_ours;                  ///< the server filter lets this server pass, as far as it is known
};

/// The elements of "triggers", in the order of the document.
std::vector<Judged_Trigger> judged_triggers(const embedded_server::Read_Documents& documents,
                                            const Tag_Map& server_tags);

}  // namespace kuv::vemora::operations
