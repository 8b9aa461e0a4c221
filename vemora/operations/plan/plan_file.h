// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "vemora/embedded_server/host/trigger_host.h"
#include "vemora/embedded_server/persistent/database.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

/// A plan that is kept: the documents, and the state of the site that it is for.
struct Kept_Plan {
  std::uint64_t server_id = 0;
  std::string config;                  ///< the text of the document, byte for byte
  std::optional<std::string> mapping;  ///< nothing: the stored one
  std::string site_digest;
  std::uint64_t last_pass = 0;  ///< in the history of the site
};

/// A file that is no plan, is damaged, or cannot be read or written. The text is for people.
class VEMORA_API Plan_File_Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A place for a plan, which only its owner may read: documents may hold what not everybody shall
/// know.
class VEMORA_API Plan_File {
 public:
  /// Neither reads nor writes anything yet.
  explicit Plan_File(std::string path);

  /// Throws Plan_File_Error if something is there that is no plan: it is never replaced.
  void require_replaceable() const;

  /// Replaces a plan that is there in one step. Throws Plan_File_Error.
  void write(const Kept_Plan& plan) const;

  /// Throws Plan_File_Error.
  Kept_Plan read() const;

 private:
  std::string path_;
};

/// Objects to a pass if the site of the database or the server is not that of the plan, or if
/// another pass has changed something since, whatever it left.
VEMORA_API embedded_server::Object_To_Pass require_site_of(
    const Kept_Plan& plan, std::shared_ptr<embedded_server::Database> database,
    std::uint64_t server_id);

}  // namespace kuv::vemora::operations
