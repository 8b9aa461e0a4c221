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

  /// Takes over what a pass over these documents leads to.
  void pass(const std::vector<Trigger_Spec>& triggers, const std::vector<Mapping_Spec>& mapping);

  // Of the last pass.
  std::vector<std::uint64_t> reconciled() const { return {reconciled_.begin(), reconciled_.end()}; }
  /// Cameras of changed subscriptions that the trigger manager need not reconcile.
  const Ids& left_pending() const { return left_pending_; }
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
  void note_cameras(const std::map<Place, Ids>& wanted, const Ids& processed);
  std::string searched_by(std::uint64_t trigger_id) const;

  const Site_Builder& site_;
  std::uint64_t server_id_;
  const std::map<std::string, std::vector<std::string>>& leaves_;

  std::map<std::uint64_t, Trigger_Spec> active_;
  std::map<Place, Ids> subscriptions_;
  std::map<std::uint64_t, Ids> generic_;
  std::map<std::uint64_t, Ids> detections_;
  Ids reconciled_;
  Ids left_pending_;
};

}  // namespace kuv::test
