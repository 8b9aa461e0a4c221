#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/database.h"

namespace kuv::vemora::embedded_server {

/// The engine that a location names; null where the mode allows for that. Throws Database_Error.
std::unique_ptr<Engine> open_engine(const std::string& location, Database::Open_Mode mode,
                                    std::chrono::milliseconds lock_wait);

}  // namespace kuv::vemora::embedded_server
