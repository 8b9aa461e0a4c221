// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/trigger_parser/trigger_config_state.h"

namespace kuv::benchmarks {

/// What a database holds for a site, in plain arrays: what the floors write.
struct Plain_Rows {
  struct Named {
    std::uint64_t id;
    std::string name;
  };
  struct Source {
    std::uint64_t trigger_id;
    std::uint32_t position;
    std::int32_t type;
    std::string topic;        ///< empty: none
    std::string object_type;  ///< empty: none
  };
  struct Subscription {
    std::uint64_t id;
    std::string topic;  ///< empty: a generic one
    std::uint64_t camera_id;
  };
  struct Detection {
    std::uint64_t id;
    std::uint64_t camera_id;
  };
  struct Link {
    std::uint64_t record_id;
    std::uint64_t trigger_id;
  };

  std::vector<Named> triggers;
  std::vector<Source> sources;
  std::vector<Subscription> subscriptions;
  std::vector<Link> subscription_links;
  std::vector<Detection> detections;
  std::vector<Link> detection_links;
};

Plain_Rows read_plain_rows(const std::shared_ptr<vemora::embedded_server::Database>& database);

/// Writes the rows into a fresh SQLite file of the leanest schema that can be asked both ways, with
/// prepared statements in key order, in one transaction that is as durable as a pass. Answers the
/// seconds from its begin to its commit.
double write_floor(const std::string& path, const Plain_Rows& rows);

/// Reads every row of that file once and builds the state that a pusher receives. Answers the
/// seconds.
double read_floor(const std::string& path, vemora::Trigger_Config_State& state);

}  // namespace kuv::benchmarks
