// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/empty_selections.h"

#include <fmt/format.h>

#include <map>
#include <set>
#include <string>

#include "vemora/operations/warnings/camera_selection.h"
#include "vemora/trigger_parser/source_types.h"

namespace kuv::vemora::operations {
namespace {

using Terms = Camera_Selections::Terms;

/// The generic subscriptions of a site by the filters that select them.
class Generic_Subscriptions {
 public:
  explicit Generic_Subscriptions(Repository& repository) : repository_(repository) {}

  bool has_one_matching(const Terms& terms) {
    const auto [known, is_new] = known_.try_emplace(terms);
    if (is_new) {
      Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params wanted;
      wanted.kind = decltype(wanted)::Kind::generic;
      wanted.tags = terms;
      known->second =
          !repository_.metadata_event_subscriptions().Get_Matching_Subscriptions(wanted).empty();
    }
    return known->second;
  }

 private:
  Repository& repository_;
  std::map<Terms, bool> known_;
};

const char* which(const Trigger_Config& config) {
  return config.tags.camera.empty() ? "of this site" : "with these tags";
}

class Selection_Judge {
 public:
  Selection_Judge(const std::shared_ptr<embedded_server::Database>& database,
                  Repository& repository, bool in_pass, Found_Warnings& found)
      : selections_(database, repository, in_pass), subscriptions_(repository), found_(found) {}

  void judge(const Judged_Trigger& trigger) {
    const Trigger_Config::Tags& tags = trigger.config->tags;
    if (!tags.event_subscription.empty() &&
        !subscriptions_.has_one_matching(tags.event_subscription)) {
      found_.in_config(
          "filter-matches-no-subscription", trigger.element["tags"]["eventSubscription"],
          trigger.subject,
          "No generic subscription has any of these tags; correct the filter, or tag the "
          "subscriptions that are meant.");
    }
    Camera_Selections::Selection cameras = selections_.of(tags.camera);
    if (!tags.camera.empty() && cameras.count() == 0) {
      found_.in_config(
          "filter-matches-no-camera", trigger.element["tags"]["camera"], trigger.subject,
          "No camera has any of these tags; correct the filter, or tag the cameras that are "
          "meant.");
    } else {
      judge_sources(trigger, cameras);
    }
  }

 private:
  void judge_sources(const Judged_Trigger& trigger, Camera_Selections::Selection& cameras) {
    std::set<std::string> unheard;
    std::set<Trigger_Source_Type> undetected;
    // A pass reads no capabilities for an inactive trigger, and neither do its warnings.
    const bool asks_for_topics = is_active(*trigger.config);
    for (const Trigger_Source& source : trigger.config->sources) {
      if (source.onvif_topic && asks_for_topics && !cameras.may_hear(*source.onvif_topic)) {
        unheard.insert(*source.onvif_topic);
      } else if ((source.type == Trigger_Source_Type::object_detection &&
                  !cameras.detects_objects()) ||
                 (source.type == Trigger_Source_Type::motion_detection &&
                  !cameras.detects_motion())) {
        undetected.insert(source.type);
      }
    }
    if (unheard.empty() && undetected.empty()) {
      return;
    }
    for (const Json::Value& source : trigger.element["sources"]) {
      const auto type = types_.type_of(source["type"].asString());
      if (type == Trigger_Source_Type::onvif_metadata &&
          unheard.count(source["onvifTopic"].asString()) != 0) {
        warn_of_topic(trigger, source["onvifTopic"], cameras);
      } else if (type && undetected.erase(*type) != 0) {  // of several such sources, at the first
        warn_of_detection(trigger, source["type"], *type);
      }
    }
  }

  void warn_of_topic(const Judged_Trigger& trigger, const Json::Value& topic,
                     Camera_Selections::Selection& cameras) {
    found_.in_config("topic-not-supported", topic, trigger.subject,
                     fmt::format("No camera {} supports topic {}{}", which(*trigger.config),
                                 in_quotes(topic.asString()),
                                 asking_for(cameras.nearest_topic(topic.asString()))));
  }

  void warn_of_detection(const Judged_Trigger& trigger, const Json::Value& type,
                         Trigger_Source_Type detection) {
    const bool of_objects = detection == Trigger_Source_Type::object_detection;
    found_.in_config(
        "no-detecting-camera", type, trigger.subject,
        fmt::format("No camera {} takes part in {} detection (\"{}\" in the inventory).",
                    which(*trigger.config), of_objects ? "object" : "motion",
                    of_objects ? "objectDetection" : "motionDetection"));
  }

  Camera_Selections selections_;
  Generic_Subscriptions subscriptions_;
  Found_Warnings& found_;
  Source_Types types_;
};

}  // namespace

void warn_of_empty_selections(const embedded_server::Read_Documents& documents,
                              const std::shared_ptr<embedded_server::Database>& database,
                              Repository& repository, const std::vector<Judged_Trigger>& triggers,
                              Found_Warnings& found) {
  Selection_Judge judge(database, repository, documents.in_pass, found);
  for (const Judged_Trigger& trigger : triggers) {
    if (trigger.is_ours && trigger.config != nullptr) {
      judge.judge(trigger);
    }
  }
}

}  // namespace kuv::vemora::operations
