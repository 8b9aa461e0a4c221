// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/plan_json.h"

#include "tools/vemora-triggers/render/records.h"

namespace kuv::vemora::tools {
namespace {

using operations::Planned_Action;
using operations::Planned_Detection;
using operations::Planned_Ids;
using operations::Planned_Links;
using operations::Planned_Subscription;
using operations::Planned_Trigger;

const char* name_of(Planned_Action action) {
  switch (action) {
    case Planned_Action::creation:
      return "create";
    case Planned_Action::deletion:
      return "delete";
    case Planned_Action::change:
      break;
  }
  return "change";
}

Json::Value to_json(const std::optional<std::uint64_t>& id) {
  return id ? Json::Value(Json::UInt64(*id)) : Json::Value();
}

Json::Value to_json(const std::optional<Planned_Ids>& ids) {
  if (!ids) {
    return {};
  }
  Json::Value list(Json::arrayValue);
  for (const std::uint64_t id : *ids) {
    list.append(Json::UInt64(id));
  }
  return list;
}

Json::Value to_json(const std::shared_ptr<const trigger>& record) {
  return record ? trigger_to_json(*record) : Json::Value();
}

void add_links(Json::Value& object, const Planned_Links& links) {
  object["before"] = to_json(links.before);
  object["after"] = to_json(links.after);
}

Json::Value to_json(const Planned_Trigger& planned) {
  Json::Value object(Json::objectValue);
  object["action"] = name_of(planned.action);
  object["id"] = Json::UInt64(planned.id);
  object["before"] = to_json(planned.before);
  object["after"] = to_json(planned.after);
  return object;
}

Json::Value to_json(const Planned_Subscription& planned) {
  Json::Value object(Json::objectValue);
  object["action"] = name_of(planned.action);
  object["id"] = to_json(planned.id);
  object["cameraId"] = to_json(planned.camera_id);
  object["onvifTopic"] = planned.onvif_topic ? Json::Value(*planned.onvif_topic) : Json::Value();
  add_links(object, planned.triggers);
  return object;
}

Json::Value to_json(const Planned_Detection& planned) {
  Json::Value object(Json::objectValue);
  object["action"] = name_of(planned.action);
  object["id"] = to_json(planned.id);
  object["cameraId"] = Json::UInt64(planned.camera_id);
  add_links(object, planned.triggers);
  return object;
}

template <class Items>
Json::Value list_of(const Items& items) {
  Json::Value list(Json::arrayValue);
  for (const auto& item : items) {
    list.append(to_json(item));
  }
  return list;
}

}  // namespace

Json::Value to_json(const operations::Plan& plan) {
  Json::Value object(Json::objectValue);
  object["triggers"] = list_of(plan.triggers);
  object["subscriptions"] = list_of(plan.subscriptions);
  object["detection"] = list_of(plan.detection);
  object["documents"] = Json::Value(Json::arrayValue);
  if (plan.replaces_config) {
    object["documents"].append("config");
  }
  if (plan.replaces_mapping) {
    object["documents"].append("mapping");
  }
  return object;
}

}  // namespace kuv::vemora::tools
