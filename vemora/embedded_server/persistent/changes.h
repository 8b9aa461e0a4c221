// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <vector>

namespace kuv::vemora::embedded_server {

/// The net changes of a pass: a record that is added and deleted again before the commit is not in
/// them. A pass that still writes after its clean-up is committed once more; what it changed then
/// is appended to each list.
struct Changes {
  /// A trigger served by a record, or no longer.
  struct Link {
    std::uint64_t record_id = 0;
    std::uint64_t trigger_id = 0;
  };

  /// What became of the records, or links, of one kind.
  template <class Item>
  struct Of {
    std::vector<Item> added;
    std::vector<Item> updated;  ///< only of triggers: all others are added or deleted
    std::vector<Item> deleted;

    /// Nothing changed.
    bool empty() const { return added.empty() && updated.empty() && deleted.empty(); }
  };

  // Every list ascending, commit by commit.
  Of<std::uint64_t> triggers;
  Of<std::uint64_t> subscriptions;
  Of<Link> subscription_links;
  Of<std::uint64_t> eta_cameras;
  Of<Link> eta_camera_links;

  /// Nothing changed.
  bool empty() const {
    return triggers.empty() && subscriptions.empty() && subscription_links.empty() &&
           eta_cameras.empty() && eta_camera_links.empty();
  }
};

/// How many records, or links, of each kind a pass has written and deleted.
struct Change_Counts {
  /// Of one kind; what was updated counts as written.
  struct Of {
    std::uint64_t written = 0;
    std::uint64_t deleted = 0;

    /// Nothing changed.
    bool empty() const { return written == 0 && deleted == 0; }
  };

  Of triggers;
  Of subscriptions;
  Of subscription_links;
  Of detection;
  Of detection_links;

  /// Nothing changed.
  bool empty() const {
    return triggers.empty() && subscriptions.empty() && subscription_links.empty() &&
           detection.empty() && detection_links.empty();
  }
};

template <class Item>
Change_Counts::Of count_of(const Changes::Of<Item>& changes) {
  return {changes.added.size() + changes.updated.size(), changes.deleted.size()};
}

inline Change_Counts counts_of(const Changes& changes) {
  return {count_of(changes.triggers), count_of(changes.subscriptions),
          count_of(changes.subscription_links), count_of(changes.eta_cameras),
          count_of(changes.eta_camera_links)};
}

}  // namespace kuv::vemora::embedded_server
