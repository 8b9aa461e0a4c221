// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/operations/site/reason.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

/// What is stored of a trigger, and why. A reason with the code "not-refreshed" says that a refresh
/// would change what is stored.
struct Explanation {
  /// What became of the trigger.
  enum class State {
    active,          ///< configured, and its record is stored
    inactive,        ///< configured, and no record is stored
    dropped,         ///< configured without a source that can be subscribed to
    failed,          ///< configured and active by the rules, but a pass fails to store it
    not_configured,  ///< not in the stored configuration
  };

  /// One of the trigger's topics on one camera.
  struct Topic {
    std::string topic;
    bool subscribed = false;
    Reasons reasons;
  };

  /// What the trigger does on one camera.
  struct Camera {
    std::uint64_t id = 0;
    std::optional<std::string> name;  ///< nothing where records name a camera that is gone
    bool selected = false;            ///< by the trigger's camera filter
    Reasons reasons;                  ///< why it is not selected, or what is not detected there
    std::vector<Topic> topics;
    bool detected = false;             ///< objects or motion are detected there for the trigger
    std::vector<std::string> objects;  ///< the types that are searched for there
  };

  /// A subscription without a camera.
  struct Subscription {
    std::uint64_t id = 0;
    std::string name;
    bool joined = false;
    Reasons reasons;
  };

  std::uint64_t id = 0;
  std::optional<std::string> name;  ///< nothing where no document and no record knows the trigger
  State state = State::not_configured;
  Reasons reasons;
  std::vector<Camera> cameras;  ///< all of the site, and those that records name besides
  /// All of the site, for a trigger that listens to such events; else those that it is joined to.
  std::vector<Subscription> subscriptions;
};

/// Reads one state of the site; writes nothing and waits for nobody. With a camera, the others are
/// left out. Throws Database_Error.
VEMORA_API Explanation explain(const std::shared_ptr<embedded_server::Database>& database,
                               std::uint64_t server_id, std::uint64_t trigger_id,
                               std::optional<std::uint64_t> camera_id = std::nullopt);

}  // namespace kuv::vemora::operations
