#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "vemora/embedded_server/persistent/copied_site.h"
#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// The database is none in a file: its own engine's tools back it up.
class VEMORA_API Not_In_A_File : public Database_Error {
 public:
  using Database_Error::Database_Error;
};

/// Writes the site into a file of its own, which can be moved and copied like any other: nothing
/// beside it belongs to it. Has the mode and, as far as this user may, the owner of the database.
/// Takes the place of a backup that is there, at once and when it is complete; of nothing else.
/// Keeps passes out. Throws Database_Error, and Not_In_A_File where there is no file to copy.
VEMORA_API Site_Counts back_up(const std::string& location, std::uint64_t server_id,
                               const std::string& file,
                               std::chrono::milliseconds lock_wait = std::chrono::seconds(30));

/// Puts the site of a backup in the place of the one that is there, and makes a database where
/// there is none. Looks the whole backup through first. One transaction: killed at any moment, the
/// site is the one before or the other one. Who reads goes on reading. Keeps passes out. The
/// cameras whose subscriptions differ become pending; all of them, where it cannot be told what was
/// there before. Throws Database_Error, Restore_Not_Known and Not_In_A_File.
VEMORA_API Restored_Site restore(const std::string& location, std::uint64_t server_id,
                                 const std::string& file,
                                 std::chrono::milliseconds lock_wait = std::chrono::seconds(30));

}  // namespace kuv::vemora::embedded_server
