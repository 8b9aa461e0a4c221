#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::vemora {

void Vemora_Trigger_Manager::remove_trigger_from_all_records_(
    const std::shared_ptr<trigger>& record) {
  Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params subscriptions;
  subscriptions.trigger = record;
  remove_trigger_from_subscriptions_(
      record,
      repository_->metadata_event_subscriptions().Get_Matching_Subscriptions(subscriptions));

  ETA_Camera_Repository::Get_Params maps;
  maps.trigger = record;
  remove_trigger_from_eta_camera_records_(record, repository_->eta_cameras().get(maps));
}

}  // namespace kuv::vemora
