// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include <ostream>
#include <string>

#include "trigger_manager/builders.h"
#include "vemora/platform/repositories/eta_camera_repository.h"
#include "vemora/platform/repositories/metadata_event_subscription_repository.h"

namespace kuv::test {

using Subscription_Query =
    Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params;
using ETA_Query = ETA_Camera_Repository::Get_Params;

std::vector<std::uint64_t> ids_of(const Cameras& cameras);
/// "name" or "name=value".
std::vector<std::string> texts_of(const Terms& terms);

/// Every field of a query in words, the trigger and the cameras by id.
std::string describe(const Subscription_Query& query);
std::string describe(const ETA_Query& query);

// What the manager asks the subscription repository for.

/// Every subscription that holds the trigger, of both kinds.
Subscription_Query subscriptions_holding(const Trigger_Record& record);

/// Topic subscriptions on one of these topics and one of these cameras that lack the trigger.
Subscription_Query topic_subscriptions_lacking(const Trigger_Record& record,
                                               std::vector<std::string> topics, Cameras cameras);

/// Those that hold the trigger outside these topics or cameras.
Subscription_Query subscriptions_holding_outside(const Trigger_Record& record,
                                                 std::vector<std::string> topics, Cameras cameras);

/// Generic subscriptions that hold the trigger.
Subscription_Query generic_subscriptions_holding(const Trigger_Record& record);

/// Generic subscriptions that match the filter and lack the trigger.
Subscription_Query generic_subscriptions_lacking(const Trigger_Record& record, Terms filter);

/// Generic subscriptions that hold the trigger and do not match the filter.
Subscription_Query generic_subscriptions_holding_against(const Trigger_Record& record,
                                                         Terms filter);

// What it asks the repository of detection records for.

/// Every record that holds the trigger.
ETA_Query maps_holding(const Trigger_Record& record);

/// The records that hold the trigger and are of none of these cameras.
ETA_Query maps_holding_outside(const Trigger_Record& record, Cameras cameras);

/// A query that is equal in every field, for the same trigger record and the same camera records.
MATCHER_P(asks_for, expected, describe(expected)) {
  *result_listener << "which asks for " << describe(arg);
  return describe(arg) == describe(expected) && arg.trigger == expected.trigger &&
         arg.cameras == expected.cameras;
}

/// The same, for a trigger record that the test cannot know yet, since the pass makes it.
MATCHER_P(asks_alike, expected, describe(expected)) {
  *result_listener << "which asks for " << describe(arg);
  return describe(arg) == describe(expected) && arg.cameras == expected.cameras;
}

}  // namespace kuv::test
