// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/explain/camera_reasons.h"

#include <fmt/format.h>

#include "vemora/operations/site/tag_texts.h"
#include "vemora/operations/warnings/found_warnings.h"
#include "vemora/platform/records/supported_topics.h"

namespace kuv::vemora::operations {

Reason reason_of_camera_filter(const Trigger_Config& config, const camera& record) {
  return {"camera-filter",
          fmt::format("The camera filter asks for {}; camera {} has {}.",
                      described(config.tags.camera), record.id, described(record.tags))};
}

Reason reason_of_gone_camera(std::uint64_t camera_id) {
  return {"camera-not-found",
          fmt::format("The site has no camera {}; only records name it.", camera_id)};
}

Reason reason_of_no_object_detection(std::uint64_t camera_id) {
  return {"no-object-detection",
          fmt::format("Camera {} takes no part in object detection.", camera_id)};
}

Reason reason_of_no_motion_detection(std::uint64_t camera_id) {
  return {"no-motion-detection",
          fmt::format("Camera {} takes no part in motion detection.", camera_id)};
}

Reason reason_of_subscription_filter(const Trigger_Config& config, std::uint64_t subscription_id,
                                     const Site_View::Generic_Subscription& subscription) {
  return {"subscription-filter",
          fmt::format("The filter for subscriptions asks for {}; subscription {} has {}.",
                      described(config.tags.event_subscription), subscription_id,
                      described(subscription.tags))};
}

Reasons reasons_of_capabilities(const camera& record, const std::string& topic) {
  const auto& topics = supported_topics(record);
  if (topics.empty()) {
    return {{"no-metadata-capabilities",
             fmt::format("The capabilities of camera {} name no topic at all.", record.id)}};
  }
  if (!is_supported(topics, topic)) {
    return {{"topic-not-supported",
             fmt::format("Camera {} does not support {}.", record.id, in_quotes(topic))}};
  }
  return {};
}

}  // namespace kuv::vemora::operations
