// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/trigger_manager/vemora_trigger_manager.h"

#include <utility>

#include "vemora/platform/utils/json.h"
#include "vemora/trigger_manager/manager_lock.h"

namespace kuv::vemora {

Vemora_Trigger_Manager::Vemora_Trigger_Manager(
    const Json::Value& config, const Json::Value& mapping, std::shared_ptr<Repository> repository,
    std::shared_ptr<capture::Manager> capture_manager, std::unique_ptr<Trigger_Parser> parser,
    std::shared_ptr<Trigger_Notification_Pusher> notification_pusher,
    std::shared_ptr<Meta_Type_Resolver> meta_type_resolver)
    : logger_("Trigger_Manager", ""),
      config_(config),
      trigger_mapping_(mapping),
      repository_(std::move(repository)),
      capture_manager_(std::move(capture_manager)),
      parser_(std::move(parser)),
      notification_pusher_(std::move(notification_pusher)),
      meta_type_resolver_(std::move(meta_type_resolver)) {
  initialize_();
}

Vemora_Trigger_Manager::~Vemora_Trigger_Manager() = default;

void Vemora_Trigger_Manager::initialize_() {
  kuv::utils::set_json_value_if_null(config_["triggers"], Json::Value(Json::arrayValue));
  kuv::utils::set_json_value_if_null(trigger_mapping_["triggerMapping"],
                                     Json::Value(Json::arrayValue));
}

Json::Value Vemora_Trigger_Manager::get_config() {
  const Read_Lock lock(mutex_, "get_config");
  return config_;
}

Json::Value Vemora_Trigger_Manager::get_trigger_mapping() {
  const Read_Lock lock(mutex_, "get_trigger_mapping");
  return trigger_mapping_;
}

}  // namespace kuv::vemora
