#include "embedded_server/persistent/index/link_journal.h"

#include <algorithm>
#include <tuple>

namespace kuv::vemora::embedded_server {
namespace {

auto key(const Changes::Link& link) {
  return std::tie(link.record_id, link.trigger_id);
}

}  // namespace

Changes::Of<Changes::Link> Link_Journal::settle() {
  std::stable_sort(events_.begin(), events_.end(), [](const Event& left, const Event& right) {
    return key(left.link) < key(right.link);
  });
  Changes::Of<Link> net;
  auto first = events_.cbegin();
  while (first != events_.cend()) {
    const auto next = std::find_if(first, events_.cend(), [first](const Event& event) {
      return key(event.link) != key(first->link);
    });
    // Coming and going take turns, so an even number of events leads back to where it began.
    if ((next - first) % 2 != 0) {
      (first->added ? net.added : net.deleted).push_back(first->link);
    }
    first = next;
  }
  events_.clear();
  events_.shrink_to_fit();
  return net;
}

}  // namespace kuv::vemora::embedded_server
