#pragma once

#include <string>

namespace kuv::vemora {

/// Key under which the server's processes keep a camera's last known capabilities.
inline const std::string CACHED_CAPABILITIES_KEY = "CachedCaps";

}  // namespace kuv::vemora
