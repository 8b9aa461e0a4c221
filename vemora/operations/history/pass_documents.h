// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/history.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

/// The history does not have a pass, or one of its documents. The text is for people.
class VEMORA_API Missing_Pass : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// It never had this pass.
class VEMORA_API No_Such_Pass : public Missing_Pass {
 public:
  using Missing_Pass::Missing_Pass;
};

/// The pass, or its document, was given up since, as the oldest are.
class VEMORA_API Pass_Not_Kept : public Missing_Pass {
 public:
  using Missing_Pass::Missing_Pass;
};

/// The texts of a configuration and a mapping. One that was never stored is an empty list.
struct Document_Texts {
  std::string config;
  std::string mapping;
};

/// The documents that were stored when a pass was over. Throws No_Such_Pass, Pass_Not_Kept and
/// Database_Error.
VEMORA_API Document_Texts
documents_of_pass(const std::shared_ptr<embedded_server::Database>& database, std::uint64_t pass);

/// The documents that are stored now. Throws Database_Error.
VEMORA_API Document_Texts
documents_of_today(const std::shared_ptr<embedded_server::Database>& database);

/// What the history has of a pass. Throws No_Such_Pass, Pass_Not_Kept and Database_Error.
VEMORA_API embedded_server::Past_Pass find_past_pass(
    const std::shared_ptr<embedded_server::Database>& database, std::uint64_t pass);

}  // namespace kuv::vemora::operations
