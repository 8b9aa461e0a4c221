// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <vector>

#include "vemora/embedded_server/host/mass_deletion.h"

namespace kuv::vemora::tools {

inline Json::Value mass_deletions_to_json(
    const std::vector<embedded_server::Mass_Deletion>& mass_deletions) {
  Json::Value list(Json::arrayValue);
  for (const embedded_server::Mass_Deletion& each : mass_deletions) {
    Json::Value object(Json::objectValue);
    object["what"] = each.what;
    object["deleted"] = Json::UInt64(each.deleted);
    object["stored"] = Json::UInt64(each.stored);
    list.append(object);
  }
  return list;
}

}  // namespace kuv::vemora::tools
