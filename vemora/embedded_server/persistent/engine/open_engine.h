// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/open_mode.h"

namespace kuv::vemora::embedded_server {

/// The engine that a location names; null where the mode allows for that. Throws Database_Error.
std::unique_ptr<Engine> open_engine(const std::string& location, Open_Mode mode,
                                    std::chrono::milliseconds lock_wait);

/// The path of the SQLite file that a location names. Throws Database_Error where it names none.
std::string sqlite_path_of(const std::string& location);

}  // namespace kuv::vemora::embedded_server
