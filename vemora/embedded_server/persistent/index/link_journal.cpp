// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/link_journal.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace kuv::vemora::embedded_server {
namespace {

auto key(const Changes::Link& link) {
  return std::tie(link.record_id, link.trigger_id);
}

/// To ids that come in their order.
void append_once(std::uint64_t id, std::vector<std::uint64_t>& ids) {
  if (ids.empty() || ids.back() != id) {
    ids.push_back(id);
  }
}

}  // namespace

Link_Journal::Net_Changes Link_Journal::settle() {
  std::stable_sort(events_.begin(), events_.end(), [](const Event& left, const Event& right) {
    return key(left.link) < key(right.link);
  });
  Net_Changes net;
  auto first = events_.cbegin();
  while (first != events_.cend()) {
    const auto next = std::find_if(first, events_.cend(), [first](const Event& event) {
      return key(event.link) != key(first->link);
    });
    // Additions and removals take turns, so an even number of them leads back to the beginning.
    if ((next - first) % 2 != 0) {
      (first->kind == Event::Kind::added ? net.links.added : net.links.deleted)
          .push_back(first->link);
      if (std::prev(next)->kind != Event::Kind::dropped) {
        append_once(first->link.record_id, net.updated_records);
      }
    }
    first = next;
  }
  events_.clear();
  events_.shrink_to_fit();
  return net;
}

}  // namespace kuv::vemora::embedded_server
