// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/vemora-triggers/invocation/options.h"
#include "vemora/operations/explain/inactive_triggers.h"
#include "vemora/platform/records/camera.h"
#include "vemora/platform/records/eta_camera.h"
#include "vemora/platform/records/metadata_event_subscription.h"
#include "vemora/platform/records/trigger.h"

namespace kuv::vemora::tools {

// Records and their parts in words.
Json::Value trigger_to_json(const trigger& record);
Json::Value source_to_json(const Trigger_Source& source);
std::string describe(const Trigger_Source& source);

template <class Record>
using Records = std::vector<std::shared_ptr<Record>>;

// Lists are in the order of a column, if one is named.

void print_triggers(const Options& options, const Records<trigger>& records,
                    const std::optional<std::size_t>& sort_column);
void print_subscriptions(const Options& options,
                         const Records<metadata_event_subscription>& records,
                         const std::optional<std::size_t>& sort_column);
void print_detection(const Options& options, const Records<eta_camera>& records,
                     const std::optional<std::size_t>& sort_column);
void print_cameras(const Options& options, const Records<camera>& records,
                   const std::optional<std::size_t>& sort_column);

// More for people, below a list.

/// Triggers without a record, and why they have none.
void print_inactive_triggers(const operations::Inactive_Triggers& inactive);

/// The topics that a camera supports, and those of its subscriptions.
void print_topics(const camera& record, const Records<metadata_event_subscription>& subscriptions);

}  // namespace kuv::vemora::tools
