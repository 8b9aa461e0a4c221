// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_manager/printers.h"

#include <gmock/gmock.h>

namespace kuv::vemora {

void PrintTo(const Trigger_Config_State& state, std::ostream* stream) {
  *stream << "\n  applied " << testing::PrintToString(state.applied_triggers)  //
          << "\n  topics " << testing::PrintToString(state.onvif_topics_by_trigger) << "\n  errors "
          << testing::PrintToString(state.errors)  //
          << "\n  subscriptions " << testing::PrintToString(state.subscriptions_by_trigger)
          << "\n  search items " << testing::PrintToString(state.search_items_by_trigger)
          << "\n  properties " << testing::PrintToString(state.properties);
}

void PrintTo(const Notification_Properties& properties, std::ostream* stream) {
  const auto in_words = [](const auto& duration) {
    return duration ? std::to_string(duration->count()) + " ms" : std::string("unset");
  };
  *stream << "{max_latency " << in_words(properties.max_latency) << ", digest_cooldown "
          << in_words(properties.digest_cooldown) << ", ack_timeout "
          << in_words(properties.ack_timeout) << ", nack_delay " << in_words(properties.nack_delay)
          << '}';
}

}  // namespace kuv::vemora
