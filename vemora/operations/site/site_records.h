// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/platform/records/trigger.h"

namespace kuv::vemora::operations {

/// The triggers of a site and what they are told of, as its records say at one moment. A copy: what
/// a pass does to the records afterwards does not show.
struct Site_Records {
  using Ids = std::vector<std::uint64_t>;  ///< ascending

  std::map<std::uint64_t, trigger> triggers;
  std::map<std::uint64_t, std::map<std::string, Ids>> topics;  ///< by camera and topic
  std::map<std::uint64_t, Ids> generic;                        ///< by subscription without a camera
  std::map<std::uint64_t, Ids> detection;                      ///< by camera
};

inline bool holds(const Site_Records::Ids& ids, std::uint64_t id) {
  return std::binary_search(ids.begin(), ids.end(), id);
}

/// Joins the pass that is open on this thread. Damaged records, subscriptions with a camera and no
/// topic, are left out: nothing can match them.
Site_Records read_site_records(const std::shared_ptr<embedded_server::Database>& database);

// Whether a trigger is told of something.
bool is_subscribed(const Site_Records& records, std::uint64_t trigger_id, std::uint64_t camera_id,
                   const std::string& topic);
bool is_joined(const Site_Records& records, std::uint64_t trigger_id,
               std::uint64_t subscription_id);
bool is_detected(const Site_Records& records, std::uint64_t trigger_id, std::uint64_t camera_id);

}  // namespace kuv::vemora::operations
