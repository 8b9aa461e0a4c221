// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>
#include <string>

#include "vemora/platform/export.h"
#include "vemora/platform/records/metadata_event_category.h"

namespace kuv::vemora {

/// The event categories of the site.
class VEMORA_API Metadata_Event_Category_Repository {
 public:
  virtual ~Metadata_Event_Category_Repository() = default;

  /// The category of that name; null when there is none. Topic subscriptions carry no category, so
  /// the trigger manager does not ask; servers that file generic subscriptions do.
  virtual std::shared_ptr<metadata_event_category> find_by_name(const std::string& name) = 0;
};

}  // namespace kuv::vemora
