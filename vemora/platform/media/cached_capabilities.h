// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>

namespace kuv::vemora {

/// Key under which the server's processes keep a camera's last known capabilities.
inline const std::string CACHED_CAPABILITIES_KEY = "CachedCaps";

}  // namespace kuv::vemora
