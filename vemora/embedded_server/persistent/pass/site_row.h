// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/embedded_server/persistent/mapping/rows.h"

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

/// What the database is, in tables of whatever version. In the current transaction; throws
/// Database_Error when that is not known.
rows::Site load_site(odb::database& database);

}  // namespace kuv::vemora::embedded_server
