// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/deletions.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// Records of one kind, most of which would be deleted.
struct Mass_Deletion {
  std::string what;  ///< "triggers", for people
  std::size_t deleted = 0;
  std::size_t stored = 0;
};

/// Whether that many deletions are more than anybody means without saying so: more than half of
/// what is stored, and at least ten.
VEMORA_API bool is_mass_deletion(const Deletions::Of& counts);

/// The kinds of which that is so.
VEMORA_API std::vector<Mass_Deletion> find_mass_deletions(const Deletions& deletions);

/// "12 of 14 triggers and 40 of 44 topic subscriptions"
VEMORA_API std::string describe(const std::vector<Mass_Deletion>& mass_deletions);

}  // namespace kuv::vemora::embedded_server
