// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <utility>

#include "vemora/platform/records/supported_topics.h"
#include "vemora/trigger_manager/collaborators.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {
namespace {

using kuv::logging::severity_level;

std::shared_ptr<metadata_event_subscription> make_subscription(
    const std::shared_ptr<trigger>& trigger_record, const std::string& topic,
    const std::shared_ptr<camera>& camera_record) {
  auto subscription = std::make_shared<metadata_event_subscription>();
  subscription->name = topic;
  subscription->onvif_topic = topic;
  subscription->camera = camera_record;
  subscription->add_trigger(trigger_record);
  return subscription;
}

}  // namespace

void Vemora_Trigger_Manager::create_onvif_metadata_source_subscriptions_if_necessary_(
    const Trigger_Details& details, const Camera_List& cameras) {
  const std::vector<std::string> topics = details.config.all_source_topics();
  for (const auto& [topic, uncovered] : get_cameras_that_need_subscriptions_(topics, cameras)) {
    for (const std::shared_ptr<camera>& camera_record : uncovered) {
      create_subscription_if_supported_(details.trigger, topic, camera_record);
    }
  }
}

std::map<std::string, Vemora_Trigger_Manager::Camera_List>
Vemora_Trigger_Manager::get_cameras_that_need_subscriptions_(const std::vector<std::string>& topics,
                                                             const Camera_List& cameras) {
  std::map<std::string, Camera_List> cameras_by_topic;
  for (const std::string& topic : topics) {
    Camera_List uncovered =
        required(repository_).cameras().get_cameras_needing_subscription(topic, cameras);
    if (!uncovered.empty()) {
      cameras_by_topic.try_emplace(topic, std::move(uncovered));
    }
  }
  return cameras_by_topic;
}

void Vemora_Trigger_Manager::create_subscription_if_supported_(
    const std::shared_ptr<trigger>& trigger_record, const std::string& topic,
    const std::shared_ptr<camera>& camera_record) {
  const auto& topics = supported_topics(*camera_record);
  if (topics.empty()) {
    logger_.log(severity_level::debug,
                "Trigger {} | Skipping subscription creation for tagged camera {}: no metadata "
                "capabilities to support onvif-metadata source.",
                trigger_record->id, camera_record->id);
    return;
  }
  if (!is_supported(topics, topic)) {
    return;
  }
  logger_.log(severity_level::info,
              "Trigger {} | Creating subscription for camera {} with ONVIF topic {}",
              trigger_record->id, camera_record->id, topic);
  const auto subscription = make_subscription(trigger_record, topic, camera_record);
  if (required(repository_).metadata_event_subscriptions().add(subscription)) {
    cameras_to_reconcile_.insert(camera_record->id);
  } else {
    record_persistence_failure_("Failed to create subscription for trigger", *trigger_record,
                                *subscription);
  }
}

}  // namespace kuv::vemora
