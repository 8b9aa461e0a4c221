// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "vemora/platform/export.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/metadata_event_category.h"
#include "vemora/platform/records/trigger.h"
#include "vemora/platform/records/trigger_link_changes.h"
#include "vemora/platform/tags/tag_entry.h"

namespace kuv::vemora {

/// A subscription to metadata events, with the triggers that it serves. There are two kinds:
///  - a topic subscription has a camera and an ONVIF topic, and is the only one for that pair; the
///    trigger manager makes it and takes it away;
///  - a generic one has neither; it belongs to the site, and triggers only join and leave it.
/// One with a camera and no topic is corrupt, and fails every pass that reads it.
struct metadata_event_subscription {
  /// The id of the camera, whether or not it is loaded. The link must be set.
  VEMORA_API std::uint64_t camera_id() const;

  /// The ids of the triggers served, ascending, whether or not they are loaded.
  VEMORA_API std::vector<std::uint64_t> trigger_ids() const;

  /// Adds a trigger; true when it was not served yet. In memory only, until the record is stored.
  VEMORA_API bool add_trigger(const std::shared_ptr<trigger>& added);

  /// Takes a trigger off; true when it was served. In memory only, until the record is stored.
  VEMORA_API bool remove_trigger(const std::shared_ptr<trigger>& removed);

  std::uint64_t id = 0;  ///< given by the repository when the record is added
  std::string name;      ///< of a topic subscription, the topic
  odb::lazy_shared_ptr<metadata_event_category> category;  ///< of a generic one, perhaps
  std::optional<std::string> onvif_topic;       ///< of a topic subscription; compared whole
  odb::lazy_shared_ptr<vemora::camera> camera;  ///< of a topic subscription
  /// Ascending by id; changed through add_trigger and remove_trigger alone.
  std::vector<odb::lazy_shared_ptr<trigger>> trigger_links;
  std::set<Tag_Entry> tags;  ///< matched by the event-subscription filters of triggers
  std::vector<odb::lazy_shared_ptr<vemora::camera>>
      camera_links;  ///< further cameras of a generic one

  /// Of the persistence library: noted by add_trigger and remove_trigger, cleared by the
  /// repository.
  Trigger_Link_Changes link_changes;
};

}  // namespace kuv::vemora
