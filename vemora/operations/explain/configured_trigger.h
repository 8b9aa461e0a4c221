// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstdint>

#include "vemora/operations/site/site_view.h"
#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora::operations {

/// A trigger in the stored configuration.
struct Configured_Trigger {
  const Json::Value* element = nullptr;    ///< null: there is none
  const Trigger_Config* config = nullptr;  ///< null: the parser dropped it, or there is none
};

/// By its id; of several elements with one id, the one that the parser kept.
Configured_Trigger find_configured(const Site_View& site, std::uint64_t trigger_id);

/// Whether the rules make it active on this server today.
inline bool is_active(const Configured_Trigger& trigger) {
  return trigger.config != nullptr && is_active(*trigger.config);
}

}  // namespace kuv::vemora::operations
