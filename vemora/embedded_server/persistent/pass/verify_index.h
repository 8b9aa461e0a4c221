// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/index/site_index.h"

namespace kuv::vemora::embedded_server {

/// Reads the site anew and throws std::logic_error where what a pass saw differs from it.
void verify_index(Engine::Session& session, odb::database& database, Site_Index& seen);

}  // namespace kuv::vemora::embedded_server
