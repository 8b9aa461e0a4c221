// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "vemora/operations/explain/explainer.h"
#include "vemora/operations/match/listeners.h"
#include "vemora/operations/match/match.h"
#include "vemora/operations/site/site_view.h"

namespace kuv::vemora::operations {

/// Why the camera of an event reports no such events; nothing where it may.
std::optional<Reason> reason_not_to_expect(const Site_View& site, const Event& event);

/// Why a trigger is not told of events. What it is given must outlive it.
class Why_Not {
 public:
  /// `after_refresh` listens as the site would after a refresh.
  Why_Not(const Site_View& site, const Listeners& after_refresh, std::uint64_t trigger_id)
      : site_(site), after_refresh_(after_refresh), explainer_(site, trigger_id), id_(trigger_id) {}

  std::uint64_t trigger_id() const { return id_; }

  /// Of an event that it is not told of as stored, or would not be after a refresh: the rules that
  /// are against it, or that a refresh would bring it.
  Reasons told_of(const Event& event) const;

 private:
  Reasons reasons_of_detection(const Event& event) const;
  void add_reasons_of_object(const Event& event, Reasons& reasons) const;

  const Site_View& site_;
  const Listeners& after_refresh_;
  Explainer explainer_;
  std::uint64_t id_;
};

/// The triggers of the stored configuration that have a source for such events and are not `told`
/// of this one, with the reasons.
std::vector<Match::Near_Miss> near_misses(const Site_View& site, const Event& event,
                                          const Listeners::Ids& told);

}  // namespace kuv::vemora::operations
