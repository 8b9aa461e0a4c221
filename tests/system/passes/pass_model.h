// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/site_builder.h"

namespace kuv::test {

using Tag_Filter_Spec = std::set<std::pair<std::string, std::optional<std::string>>>;

/// A trigger as an operator means it.
struct Trigger_Spec {
  std::uint64_t id = 0;
  std::string name;
  Tag_Filter_Spec server_filter;
  Tag_Filter_Spec camera_filter;
  Tag_Filter_Spec event_filter;
  std::set<std::string> topics;
  std::map<std::string, bool> object_types;  ///< and whether motion is required
  bool generic_events = false;
  bool motion = false;
  bool audio = false;
  bool external = false;  ///< not for us
  bool any_time = false;
  std::optional<std::set<std::uint64_t>> schedule_ids;
};

struct Mapping_Spec {
  std::set<std::uint64_t> schedule_ids;
  std::set<std::uint64_t> trigger_ids;
};

Json::Value document_of(const std::vector<Trigger_Spec>& triggers);
Json::Value document_of(const std::vector<Mapping_Spec>& mapping);

/// What a pass must lead to, said as a whole rather than step by step.
class Pass_Model {
 public:
  using Ids = std::set<std::uint64_t>;

  Pass_Model(const Site_Builder& site, std::uint64_t server_id,
             const std::map<std::string, std::vector<std::string>>& leaves)
      : site_(site), server_id_(server_id), leaves_(leaves) {}

  /// A trigger and a camera: what keeps the trigger from being processed to its end, when it comes
  /// to create a subscription of that camera.
  using Snags = std::set<std::pair<std::uint64_t, std::uint64_t>>;

  /// Takes over what a pass over these documents leads to.
  void pass(const std::vector<Trigger_Spec>& triggers, const std::vector<Mapping_Spec>& mapping,
            const Snags& snags = {});

  /// What another program leaves behind: a subscription on a topic, without a camera, that holds
  /// the triggers that are stored. Its id is taken by nobody.
  void leave_behind_a_topic_without_a_camera(std::uint64_t id, const std::string& topic);
  Ids stored_ids() const;

  // Of the last pass.
  /// The cameras that the trigger manager asks for.
  std::vector<std::uint64_t> reconciled() const { return {reconciled_.begin(), reconciled_.end()}; }
  /// Those among them whose subscriptions are others after the pass than before it.
  const Ids& changed_cameras() const { return changed_cameras_; }
  /// Those of subscriptions that only lost triggers that are deleted.
  const Ids& cameras_left_alone() const { return cameras_left_alone_; }
  /// The triggers that met a snag, in the order of the configuration.
  const std::vector<std::uint64_t>& failed() const { return failed_; }
  std::vector<std::string> state() const;

  // What is stored, in the words of Server_Around.
  std::vector<std::string> topic_subscriptions() const;
  std::vector<std::string> generic_subscriptions() const;
  std::vector<std::string> detections() const;
  std::vector<std::string> stored_triggers() const;

 private:
  using Place = std::pair<std::uint64_t, std::string>;  ///< camera and topic

  bool is_active(const Trigger_Spec& trigger, const std::vector<Mapping_Spec>& mapping) const;
  bool usable(const std::set<std::uint64_t>& schedule_ids) const;
  bool selects(const Trigger_Spec& trigger, std::uint64_t camera_id) const;
  std::map<Place, Ids> wanted_subscriptions() const;
  std::map<std::uint64_t, Ids> wanted_detections() const;
  std::map<std::uint64_t, Ids> wanted_generic() const;
  void take_off_topics_without_a_camera();
  bool creates_its_subscriptions(const Trigger_Spec& trigger, const Snags& snags,
                                 std::set<Place>& present) const;
  void note_cameras(const std::map<Place, Ids>& wanted, const std::set<Place>& present,
                    const Ids& processed);
  std::string searched_by(std::uint64_t trigger_id) const;

  const Site_Builder& site_;
  std::uint64_t server_id_;
  const std::map<std::string, std::vector<std::string>>& leaves_;

  std::map<std::uint64_t, Trigger_Spec> active_;
  std::map<Place, Ids> subscriptions_;
  std::map<std::uint64_t, Ids> generic_;
  std::map<std::uint64_t, std::string> without_camera_;  ///< topics; their triggers are in generic_
  std::map<std::uint64_t, Ids> detections_;
  Ids reconciled_;
  Ids changed_cameras_;
  Ids cameras_left_alone_;
  std::vector<std::uint64_t> failed_;
};

}  // namespace kuv::test
