// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>

#include "vemora/platform/repositories/metadata_event_subscription_repository.h"

namespace kuv::test {

class Mock_Metadata_Event_Subscription_Repository
    : public vemora::Metadata_Event_Subscription_Repository {
 public:
  using Record = std::shared_ptr<vemora::metadata_event_subscription>;

  MOCK_METHOD(bool, add, (const Record& added), (override));
  MOCK_METHOD(bool, update, (const Record& changed), (override));
  MOCK_METHOD(Subscription_List, Get_Matching_Subscriptions,
              (const Get_Matching_Subscriptions_Params& params), (override));
  MOCK_METHOD(Subscription_List, get_stale, (const std::set<std::uint64_t>& live_trigger_ids),
              (override));
  MOCK_METHOD(void, delete_stale, (), (override));
};

}  // namespace kuv::test
