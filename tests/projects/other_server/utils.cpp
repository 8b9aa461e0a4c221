// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/utils/json.h"

namespace kuv::utils {

void set_json_value_if_null(Json::Value& target, const Json::Value& fallback) {
  if (target.isNull()) {
    target = fallback;
  }
}

}  // namespace kuv::utils
