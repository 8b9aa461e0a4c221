// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <set>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

// What a backup and a restore answer, see backup.h.

/// What a copy of a site holds.
struct Site_Counts {
  std::uint64_t triggers = 0;
  std::uint64_t subscriptions = 0;
  std::uint64_t cameras = 0;
};

/// What a restore leaves.
struct Restored_Site {
  Site_Counts counts;
  std::set<std::uint64_t> pending_cameras;  ///< to be reconciled by the next pass
};

/// The disk failed in the commit of a restore: the site is the one before or that of the backup.
class VEMORA_API Restore_Not_Known : public Database_Error {
 public:
  using Database_Error::Database_Error;
};

}  // namespace kuv::vemora::embedded_server
