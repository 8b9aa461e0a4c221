// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <vector>

namespace kuv::vemora {

/// What happened to the trigger links of a record since it was last loaded or stored. Bookkeeping
/// of the persistence library, so that an update writes these links and no others; an id stands in
/// at most one of the two lists. The records' add_trigger and remove_trigger note it, and the
/// repositories clear it when they have stored the record; the trigger manager neither reads nor
/// writes it. A server that stores all links of a record leaves it empty.
struct Trigger_Link_Changes {
  std::vector<std::uint64_t> added;    ///< ids of triggers
  std::vector<std::uint64_t> removed;  ///< ids of triggers
};

}  // namespace kuv::vemora
