// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/embedded_server/host/trigger_host.h"
#include "vemora/embedded_server/persistent/database.h"
#include "vemora/platform/export.h"
#include "vemora/platform/records/trigger.h"
#include "vemora/platform/tags/tag_info.h"

namespace kuv::vemora::operations {

// What a pass would do to each record.

enum class Planned_Action { creation, change, deletion };

/// Ascending.
using Planned_Ids = std::vector<std::uint64_t>;

/// What a pass would do to a trigger record.
struct Planned_Trigger {
  Planned_Action action;
  std::uint64_t id = 0;
  std::shared_ptr<const trigger> before;  ///< null of one that is created
  std::shared_ptr<const trigger> after;   ///< null of one that is deleted
};

/// The triggers that a record serves.
struct Planned_Links {
  std::optional<Planned_Ids> before;  ///< nothing for a record that is created
  std::optional<Planned_Ids> after;   ///< nothing for one that is deleted
};

/// What a pass would do to a subscription.
struct Planned_Subscription {
  Planned_Action action;
  std::optional<std::uint64_t> id;  ///< nothing before it is created
  std::string name;
  std::optional<std::uint64_t> camera_id;
  std::optional<std::string> onvif_topic;
  Planned_Links triggers;
};

/// What a pass would do to a detection record.
struct Planned_Detection {
  Planned_Action action;
  std::optional<std::uint64_t> id;  ///< nothing before it is created
  std::uint64_t camera_id = 0;
  Planned_Links triggers;
};

/// What is told of a camera beside its id.
struct Planned_Camera {
  std::string name;
  Tag_Map tags;
};

/// What a pass would do, all of it.
struct VEMORA_API Plan {
  embedded_server::Pass_Outcome outcome;

  // Ascending by id; behind those that have one, what is created, by camera and topic.
  std::vector<Planned_Trigger> triggers;
  std::vector<Planned_Subscription> subscriptions;
  std::vector<Planned_Detection> detection;

  // Whether the stored text would be replaced by another.
  bool replaces_config = false;
  bool replaces_mapping = false;

  /// The site's own, by id.
  std::map<std::uint64_t, Planned_Camera> cameras;
  /// The names of triggers that are there before or after, by id.
  std::map<std::uint64_t, std::string> trigger_names;

  /// Of the site that the plan is for; empty unless it was asked for.
  std::string site_digest;
  /// The last pass in the site's history; 0 unless the digest was asked for.
  std::uint64_t last_pass = 0;

  /// Whether the pass would leave everything as it is: no record, no document, no camera's stream.
  bool changes_nothing() const;
};

enum class Site_Digest { wanted, unwanted };

/// Runs the pass that `host.apply(config, mapping)` would run on the database of that host, and
/// says what it would do. Nothing is written, nobody is told, nobody is waited for. Throws
/// Database_Error if the database fails.
VEMORA_API Plan make_plan(const embedded_server::Trigger_Host& host,
                          const std::shared_ptr<embedded_server::Database>& database,
                          const embedded_server::Json_Document& config,
                          const embedded_server::Json_Document* mapping,
                          Site_Digest digest = Site_Digest::unwanted);

}  // namespace kuv::vemora::operations
