// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

#include "vemora/platform/export.h"
#include "vemora/platform/trigger_source_type.h"

namespace kuv::vemora::Database_Enums {

/// The enumerator that `name` stands for in documents; lower-case words joined by hyphens.
/// Throws std::invalid_argument for a name that is none of them. The trigger manager asks with the
/// name in lower case, and takes whatever is thrown to say that the name is unknown: the source is
/// skipped then.
template <class Enumeration>
Enumeration convert(const std::string& name);

template <>
VEMORA_API Trigger_Source_Type convert<Trigger_Source_Type>(const std::string& name);

}  // namespace kuv::vemora::Database_Enums
