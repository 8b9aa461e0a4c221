// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/explain/silence.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string>
#include <string_view>

#include "vemora/embedded_server/persistent/source_type_names.h"
#include "vemora/operations/site/tag_texts.h"

namespace kuv::vemora::operations {
namespace {

constexpr std::string_view subscription_filter = "subscription-filter";

bool hears(const Explanation::Camera& camera) {
  return camera.detected || std::any_of(camera.topics.begin(), camera.topics.end(),
                                        [](const auto& topic) { return topic.subscribed; });
}

bool has_source(const Trigger_Config& config, Trigger_Source_Type type) {
  return std::any_of(config.sources.begin(), config.sources.end(),
                     [type](const Trigger_Source& source) { return source.type == type; });
}

bool needs_cameras(const Trigger_Config& config) {
  return has_source(config, Trigger_Source_Type::onvif_metadata) ||
         has_source(config, Trigger_Source_Type::object_detection) ||
         has_source(config, Trigger_Source_Type::motion_detection);
}

bool lacks_what_the_filter_asks_for(const Explanation::Subscription& subscription) {
  return std::any_of(subscription.reasons.begin(), subscription.reasons.end(),
                     [](const Reason& reason) { return reason.code == subscription_filter; });
}

/// Reasons of many cameras or subscriptions; those with one code become one.
class Gathered_Reasons {
 public:
  void add(const Reasons& reasons) {
    for (const Reason& reason : reasons) {
      if (reason.code == "not-refreshed") {
        continue;  // said of the whole trigger
      }
      Gathered& gathered = by_code_[reason.code];
      if (gathered.count++ == 0) {
        gathered.first = reason.text;
      }
    }
  }

  Reasons take() const {
    Reasons reasons;
    for (const auto& [code, gathered] : by_code_) {
      reasons.push_back({code, gathered.count == 1 ? gathered.first
                                                   : fmt::format("{} ({} like this.)",
                                                                 gathered.first, gathered.count)});
    }
    return reasons;
  }

 private:
  struct Gathered {
    std::size_t count = 0;
    std::string first;
  };

  std::map<std::string, Gathered> by_code_;
};

void gather_from_cameras(const Site_View& site, const Trigger_Config& config,
                         const Explanation& explained, Reasons& reasons) {
  if (site.cameras().empty()) {
    reasons.push_back({"camera-not-found", "The site has no cameras."});
    return;
  }
  Gathered_Reasons gathered;
  bool selects_one = false;
  for (const Explanation::Camera& camera : explained.cameras) {
    if (camera.selected) {
      selects_one = true;
      gathered.add(camera.reasons);
      for (const Explanation::Topic& topic : camera.topics) {
        gathered.add(topic.reasons);
      }
    }
  }
  if (!selects_one) {
    reasons.push_back({"camera-filter", fmt::format("No camera has what the camera filter asks "
                                                    "for: {}.",
                                                    described(config.tags.camera))});
  }
  const Reasons of_selected = gathered.take();
  reasons.insert(reasons.end(), of_selected.begin(), of_selected.end());
}

void gather_from_subscriptions(const Site_View& site, const Trigger_Config& config,
                               const Explanation& explained, Reasons& reasons) {
  if (site.subscriptions().empty()) {
    reasons.push_back({"subscription-not-found", "The site has no generic subscriptions."});
    return;
  }
  Gathered_Reasons gathered;
  for (const Explanation::Subscription& subscription : explained.subscriptions) {
    gathered.add(subscription.reasons);
  }
  const bool none_fits = std::all_of(explained.subscriptions.begin(), explained.subscriptions.end(),
                                     lacks_what_the_filter_asks_for);
  for (Reason& reason : gathered.take()) {
    if (none_fits && reason.code == subscription_filter) {
      reason.text = fmt::format(
          "No generic subscription has what the filter for subscriptions asks "
          "for: {}.",
          described(config.tags.event_subscription));
    }
    reasons.push_back(reason);
  }
}

}  // namespace

bool is_silent(const Explanation& explained) {
  return std::none_of(explained.cameras.begin(), explained.cameras.end(), hears) &&
         std::none_of(explained.subscriptions.begin(), explained.subscriptions.end(),
                      [](const auto& subscription) { return subscription.joined; });
}

Reasons reasons_of_silence(const Site_View& site, const Trigger_Config& config,
                           const Explanation& explained) {
  Reasons reasons;
  const bool by_cameras = needs_cameras(config);
  const bool by_subscriptions = has_source(config, Trigger_Source_Type::metadata_event);
  if (by_cameras) {
    gather_from_cameras(site, config, explained, reasons);
  }
  if (by_subscriptions) {
    gather_from_subscriptions(site, config, explained, reasons);
  }
  if (!by_cameras && !by_subscriptions) {
    std::vector<std::string> types;
    for (const Trigger_Source& source : config.sources) {
      types.emplace_back(name_of(source.type));
    }
    reasons.push_back(
        {"no-usable-source",
         fmt::format("Its sources need no subscription and no detection: {}.", described(types))});
  }
  return reasons;
}

}  // namespace kuv::vemora::operations
