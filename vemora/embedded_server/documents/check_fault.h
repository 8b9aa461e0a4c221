// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "vemora/embedded_server/documents/document_fault.h"

namespace kuv::vemora::embedded_server {

/// One reason for which a document would be rejected.
struct Check_Fault {
  std::string document;  ///< "config", "mapping" or "inventory"
  Document_Fault fault;
  std::optional<std::size_t> index;  ///< of the trigger or association in its array
  std::optional<std::uint64_t> id;   ///< of the trigger
};

}  // namespace kuv::vemora::embedded_server
