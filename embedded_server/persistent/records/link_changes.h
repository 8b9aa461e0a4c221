#pragma once

#include <cstdint>

#include "vemora/platform/records/trigger_link_changes.h"

namespace kuv::vemora {

/// Notes that a link was added; one that was removed before is back as it was stored.
void note_added(Trigger_Link_Changes& changes, std::uint64_t trigger_id);

/// Notes that a link was removed; one that was added before was never stored.
void note_removed(Trigger_Link_Changes& changes, std::uint64_t trigger_id);

}  // namespace kuv::vemora
