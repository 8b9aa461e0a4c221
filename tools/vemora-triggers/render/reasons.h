// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <string>

#include "vemora/operations/site/reason.h"

namespace kuv::vemora::tools {

Json::Value reasons_to_json(const operations::Reasons& reasons);

/// The sentences, one behind the other.
std::string described(const operations::Reasons& reasons);

}  // namespace kuv::vemora::tools
