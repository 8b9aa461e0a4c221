// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>

#include <utility>

#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {
namespace {

using Directive_Config_Processing::Error;

}  // namespace

void Vemora_Trigger_Manager::record_persistence_failure_(std::string_view message,
                                                         const trigger& record,
                                                         const eta_camera& camera_record) {
  report_failure_(
      fmt::format("Trigger {}: {} | camera ID {}", record.id, message, camera_record.camera_id()));
}

void Vemora_Trigger_Manager::record_persistence_failure_(
    std::string_view message, const trigger& record,
    const metadata_event_subscription& subscription) {
  std::string text = fmt::format("Trigger {}: {}", record.id, message);
  if (subscription.camera) {
    // Not tested for: a subscription with a camera and no topic is a corrupt record, and a report
    // that left the topic out would pass it off as a generic one.
    text += fmt::format(" | ONVIF topic \"{}\", camera ID {}", subscription.onvif_topic.value(),
                        subscription.camera_id());
  }
  report_failure_(std::move(text));
}

void Vemora_Trigger_Manager::report_failure_(std::string text) {
  logger_.log(kuv::logging::severity_level::error, "{}", text);
  state_.add_error(Error::Category::failed_processing, std::move(text));
}

}  // namespace kuv::vemora
