// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <string>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

enum class Json_Encoding {
  ascii,  ///< all other characters are escaped, and bytes that are not UTF-8
  utf8,   ///< characters stay as they are
};

/// A JSON document on one line. Throws if memory runs out; a stream by itself would silently drop
/// the rest.
VEMORA_API std::string json_text(const Json::Value& value, Json_Encoding encoding);

}  // namespace kuv::vemora::embedded_server
