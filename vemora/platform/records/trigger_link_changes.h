#pragma once

#include <cstdint>
#include <vector>

namespace kuv::vemora {

/// What happened to the trigger links of a record since it was last loaded or stored. Bookkeeping
/// of the persistence library, so that an update writes these links and no others; an id stands in
/// at most one of the two lists.
struct Trigger_Link_Changes {
  std::vector<std::uint64_t> added;
  std::vector<std::uint64_t> removed;
};

}  // namespace kuv::vemora
