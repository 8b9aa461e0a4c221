// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "vemora/operations/explain/configured_trigger.h"
#include "vemora/operations/explain/explain.h"
#include "vemora/operations/site/site_view.h"

namespace kuv::vemora::operations {

/// Explains one trigger of a site, which must outlive it.
class Explainer {
 public:
  Explainer(const Site_View& site, std::uint64_t trigger_id);

  /// With a camera, the others are left out.
  Explanation explanation(std::optional<std::uint64_t> camera_id) const;

  /// Without cameras and subscriptions.
  Explanation of_trigger() const;

  Explanation::Camera camera(std::uint64_t camera_id) const;
  Explanation::Topic topic(std::uint64_t camera_id, const std::string& topic) const;
  Explanation::Subscription subscription(std::uint64_t subscription_id) const;

  /// What the parser made of the trigger; null where it is not configured, or dropped.
  const Trigger_Config* config() const { return configured_.config; }

  bool is_selected(std::uint64_t camera_id) const { return selected_.count(camera_id) != 0; }

  /// Why the camera filter does not select a camera of the site, or one that is gone; nothing where
  /// it does.
  Reasons reasons_of_selection(std::uint64_t camera_id) const;

  /// Why the rules do not make the trigger active today; nothing where they do.
  const Reasons& inactivity() const { return inactivity_; }

  // Why the rules do not let the trigger be told of something, which it would not be after a
  // refresh; nothing where none of its sources asks for it.
  Reasons rules_against_topic(std::uint64_t camera_id, const std::string& topic) const;
  Reasons rules_against_subscription(std::uint64_t subscription_id) const;

 private:
  void find_joinable();
  Explanation::State state() const;
  Reasons reasons() const;
  std::optional<Reason> reason_of_change() const;
  Reasons rules_against_detection(const Explanation::Camera& camera) const;
  void explain_detection(Explanation::Camera& camera) const;
  std::set<std::string> topics_at(std::uint64_t camera_id) const;
  std::set<std::uint64_t> cameras_to_explain() const;
  std::set<std::uint64_t> subscriptions_to_explain() const;
  bool has_source(Trigger_Source_Type type) const;
  const trigger* stored_record() const;
  const trigger* refreshed_record() const;

  const Site_View& site_;
  std::uint64_t id_;
  Configured_Trigger configured_;
  std::set<std::string> own_topics_;  ///< of its sources
  std::set<std::uint64_t> selected_;
  std::set<std::uint64_t> joinable_;  ///< generic subscriptions that its filter matches
  Reasons inactivity_;
};

}  // namespace kuv::vemora::operations
