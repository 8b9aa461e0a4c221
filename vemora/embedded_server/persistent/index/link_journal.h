// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <vector>

#include "vemora/embedded_server/persistent/changes.h"

namespace kuv::vemora::embedded_server {

/// The trigger links that a pass added and removed. One that was removed and added again is no
/// change.
class Link_Journal {
 public:
  using Link = Changes::Link;

  struct Net_Changes {
    Changes::Of<Link> links;  ///< each list ascending by record and trigger
    /// The records that were updated with other triggers; not those that only lost deleted ones.
    std::vector<std::uint64_t> updated_records;
  };

  // Updates of the record.
  void note_added(std::uint64_t record_id, std::uint64_t trigger_id) {
    events_.push_back({{record_id, trigger_id}, Event::Kind::added});
  }
  void note_removed(std::uint64_t record_id, std::uint64_t trigger_id) {
    events_.push_back({{record_id, trigger_id}, Event::Kind::removed});
  }

  /// A link that is removed because its trigger is deleted.
  void note_dropped(std::uint64_t record_id, std::uint64_t trigger_id) {
    events_.push_back({{record_id, trigger_id}, Event::Kind::dropped});
  }

  /// What is left of it all. The journal is empty then.
  Net_Changes settle();

  bool empty() const { return events_.empty(); }

 private:
  struct Event {
    enum class Kind { added, removed, dropped };

    Link link;
    Kind kind;
  };

  std::vector<Event> events_;
};

}  // namespace kuv::vemora::embedded_server
