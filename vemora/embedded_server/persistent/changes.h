#pragma once

#include <cstdint>
#include <vector>

namespace kuv::vemora::embedded_server {

/// What a pass writes, net: what comes and goes before the pass is committed is not in it. A pass
/// that goes on writing behind its clean-up is committed once more, and what it changed then
/// follows in each list.
struct Changes {
  /// A trigger served by a record, or no longer.
  struct Link {
    std::uint64_t record_id = 0;
    std::uint64_t trigger_id = 0;
  };

  template <class Item>
  struct Of {
    std::vector<Item> added;
    std::vector<Item> updated;  ///< of triggers alone: everything else comes and goes whole
    std::vector<Item> deleted;

    bool empty() const { return added.empty() && updated.empty() && deleted.empty(); }
  };

  // Every list ascending, commit by commit.
  Of<std::uint64_t> triggers;
  Of<std::uint64_t> subscriptions;
  Of<Link> subscription_links;
  Of<std::uint64_t> eta_cameras;
  Of<Link> eta_camera_links;

  bool empty() const {
    return triggers.empty() && subscriptions.empty() && subscription_links.empty() &&
           eta_cameras.empty() && eta_camera_links.empty();
  }
};

}  // namespace kuv::vemora::embedded_server
