// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "vemora/embedded_server/persistent/copied_site.h"
#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// The database is not in a file: it is backed up with the tools of its own engine.
class VEMORA_API Not_In_A_File : public Database_Error {
 public:
  using Database_Error::Database_Error;
};

/// Writes the site into one file, which can be moved and copied without any other. The file gets
/// the mode and, if this user may set it, the owner of the database. A backup of that name is
/// replaced in one step when the new one is complete; any other file is never replaced. No pass
/// runs meanwhile. Throws Database_Error, and Not_In_A_File if the database is not in a file.
VEMORA_API Site_Counts back_up(const std::string& location, std::uint64_t server_id,
                               const std::string& file,
                               std::chrono::milliseconds lock_wait = std::chrono::seconds(30));

/// Replaces the site by that of a backup; creates a database if there is none. The whole backup is
/// checked first. One transaction: if the program is killed at any moment, the site is the old one
/// or the new one. Readers are not interrupted, and no pass runs meanwhile. The cameras whose
/// subscriptions differ become pending; all cameras do if the old site cannot be read. Throws
/// Database_Error, Restore_Not_Known and Not_In_A_File.
VEMORA_API Restored_Site restore(const std::string& location, std::uint64_t server_id,
                                 const std::string& file,
                                 std::chrono::milliseconds lock_wait = std::chrono::seconds(30));

}  // namespace kuv::vemora::embedded_server
