#pragma once

#include <cstdint>
#include <vector>

#include "vemora/embedded_server/persistent/changes.h"

namespace kuv::vemora::embedded_server {

/// The trigger links that came and went in a pass. A link that went and came back is no change.
class Link_Journal {
 public:
  using Link = Changes::Link;

  void note_added(std::uint64_t record_id, std::uint64_t trigger_id) {
    events_.push_back({{record_id, trigger_id}, true});
  }
  void note_removed(std::uint64_t record_id, std::uint64_t trigger_id) {
    events_.push_back({{record_id, trigger_id}, false});
  }

  /// What is left of it all, each list ascending by record and trigger. The journal is empty then.
  Changes::Of<Link> settle();

  bool empty() const { return events_.empty(); }

 private:
  struct Event {
    Link link;
    bool added;
  };

  std::vector<Event> events_;
};

}  // namespace kuv::vemora::embedded_server
