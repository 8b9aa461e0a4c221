#include "embedded_server/persistent/records/link_changes.h"

#include <algorithm>
#include <vector>

namespace kuv::vemora {
namespace {

void note(std::vector<std::uint64_t>& noted, std::vector<std::uint64_t>& opposite,
          std::uint64_t trigger_id) {
  const auto undone = std::find(opposite.begin(), opposite.end(), trigger_id);
  if (undone == opposite.end()) {
    noted.push_back(trigger_id);
  } else {
    opposite.erase(undone);
  }
}

}  // namespace

void note_added(Trigger_Link_Changes& changes, std::uint64_t trigger_id) {
  note(changes.added, changes.removed, trigger_id);
}

void note_removed(Trigger_Link_Changes& changes, std::uint64_t trigger_id) {
  note(changes.removed, changes.added, trigger_id);
}

}  // namespace kuv::vemora
