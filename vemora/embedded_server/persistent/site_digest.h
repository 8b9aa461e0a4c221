// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>
#include <string>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// A digest of everything that decides what a pass does and what is there after it: the inventory,
/// the records, the stored documents, and the cameras that are still to be reconciled. Joins the
/// pass that is open on its thread, and is of what the database holds: what that pass has not
/// committed is not in it. Throws Database_Error.
VEMORA_API std::string digest_of_site(const std::shared_ptr<Database>& database);

}  // namespace kuv::vemora::embedded_server
