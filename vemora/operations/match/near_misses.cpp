#include "vemora/operations/match/near_misses.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "vemora/operations/explain/camera_reasons.h"
#include "vemora/operations/explain/explainer.h"
#include "vemora/operations/site/tag_texts.h"
#include "vemora/operations/warnings/found_warnings.h"
#include "vemora/trigger_manager/search_items.h"

namespace kuv::vemora::operations {
namespace {

/// The search items that are meant by an object's type: what they stand for, or that very name.
struct Meant {
  bool by_name = false;  ///< a source has the type, which is a general one
  bool found = false;    ///< a source stands for the type
  bool motion_required = false;
};

Meant meant_by(const Site_View& site, const Trigger_Config& config, const std::string& type) {
  trigger record;
  record.sources = config.sources;
  Meant meant;
  for (const Object_Search_Item& item : search_items(record)) {
    meant.by_name = meant.by_name || item.object_type == type;
  }
  for (const Object_Search_Item& item : site.objects_of(record)) {
    if (item.object_type == type) {
      meant.found = true;
      meant.motion_required = item.motion_required;
    }
  }
  return meant;
}

bool has_source(const Trigger_Config& config, Trigger_Source_Type type) {
  return std::any_of(config.sources.begin(), config.sources.end(),
                     [type](const Trigger_Source& source) { return source.type == type; });
}

class Near_Miss_Finder {
 public:
  Near_Miss_Finder(const Site_View& site, const Event& event)
      : site_(site), event_(event), after_refresh_(told_after_refresh(site, event)) {}

  bool is_meant(const Trigger_Config& config) const {
    switch (event_.kind) {
      case Event::Kind::topic: {
        const std::vector<std::string> topics = config.all_source_topics();
        return std::find(topics.begin(), topics.end(), event_.text) != topics.end();
      }
      case Event::Kind::object: {
        const Meant meant = meant_by(site_, config, event_.text);
        return meant.by_name || meant.found;
      }
      case Event::Kind::motion:
        return has_source(config, Trigger_Source_Type::motion_detection);
      case Event::Kind::subscription:
        return has_source(config, Trigger_Source_Type::metadata_event);
    }
    return false;
  }

  Reasons reasons(const Trigger_Config& config) const {
    const Explainer explainer(site_, config.id);
    switch (event_.kind) {
      case Event::Kind::topic:
        return explainer.topic(event_.place, event_.text).reasons;
      case Event::Kind::subscription:
        return explainer.subscription(event_.place).reasons;
      default:
        return reasons_of_detection(config, explainer);
    }
  }

 private:
  static Listeners::Ids told_after_refresh(const Site_View& site, const Event& event) {
    return Listeners(site.refreshed(), site.resolver()).told_of(event);
  }

  Reasons reasons_of_detection(const Trigger_Config& config, const Explainer& explainer) const {
    Reasons reasons = explainer.inactivity();
    if (reasons.empty()) {
      reasons = explainer.reasons_of_selection(event_.place);
    }
    add_reasons_of_camera(reasons);
    if (event_.kind == Event::Kind::object) {
      add_reasons_of_object(config, reasons);
    }
    if (holds(after_refresh_, config.id)) {
      reasons.push_back({"not-refreshed", "A refresh would let it be told of this."});
    } else if (reasons.empty()) {
      const Reasons others = explainer.camera(event_.place).reasons;
      reasons.insert(reasons.end(), others.begin(), others.end());
    }
    return reasons;
  }

  void add_reasons_of_camera(Reasons& reasons) const {
    const auto facts = site_.cameras().find(event_.place);
    if (facts == site_.cameras().end()) {
      return;
    }
    if (event_.kind == Event::Kind::object && !facts->second->object_detection) {
      reasons.push_back(reason_of_no_object_detection(event_.place));
    } else if (event_.kind == Event::Kind::motion && !facts->second->motion_detection) {
      reasons.push_back(reason_of_no_motion_detection(event_.place));
    }
  }

  void add_reasons_of_object(const Trigger_Config& config, Reasons& reasons) const {
    const Meant meant = meant_by(site_, config, event_.text);
    if (meant.by_name && !meant.found) {
      reasons.push_back(
          {"general-object-type",
           fmt::format("Object type {} stands for {}; what is detected has one of those.",
                       in_quotes(event_.text),
                       described(site_.resolver().resolve({event_.text})))});
    } else if (meant.motion_required && !event_.in_motion) {
      reasons.push_back(
          {"motion-required", fmt::format("It asks for {} in motion; this one stands still.",
                                          in_quotes(event_.text))});
    }
  }

  const Site_View& site_;
  const Event& event_;
  Listeners::Ids after_refresh_;
};

}  // namespace

std::vector<Match::Near_Miss> near_misses(const Site_View& site, const Event& event,
                                          const Listeners::Ids& told) {
  const Near_Miss_Finder finder(site, event);
  std::map<std::uint64_t, Match::Near_Miss> found;
  for (const Judged_Trigger& trigger : site.triggers()) {
    const Trigger_Config* const config = trigger.config;
    if (config != nullptr && !holds(told, config->id) && finder.is_meant(*config)) {
      found[config->id] = {{config->id, config->name}, finder.reasons(*config)};
    }
  }
  std::vector<Match::Near_Miss> list;
  list.reserve(found.size());
  for (auto& [id, near_miss] : found) {
    list.push_back(std::move(near_miss));
  }
  return list;
}

}  // namespace kuv::vemora::operations
