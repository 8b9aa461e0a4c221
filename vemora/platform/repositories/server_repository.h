// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>

#include "vemora/platform/export.h"
#include "vemora/platform/records/server.h"

namespace kuv::vemora {

/// The servers of the site. Called while the documents are parsed: an exception fails the operation
/// of the trigger manager, and nothing was written.
class VEMORA_API Server_Repository {
 public:
  virtual ~Server_Repository() = default;

  /// The server of that id as the database holds it now; null when there is none, which rejects
  /// every configuration.
  virtual std::shared_ptr<server> get_by_id(std::uint64_t id) = 0;
};

}  // namespace kuv::vemora
