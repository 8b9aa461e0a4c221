#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "support/site_builder.h"
#include "vemora/platform/repositories/eta_camera_repository.h"
#include "vemora/platform/repositories/metadata_event_subscription_repository.h"

namespace kuv::test {

/// What the repositories should hold and answer, without anything that makes it fast.
class Plain_Model {
 public:
  using Ids = std::set<std::uint64_t>;
  using Subscription_Query =
      Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params;
  using Detection_Query = ETA_Camera_Repository::Get_Params;
  using Terms = std::set<ODB_Utils::Tag_Search_Term>;

  struct Subscription {
    std::string name;
    std::optional<std::uint64_t> camera_id;
    std::optional<std::string> topic;
    Tag_Map tags;
    Ids trigger_ids;
  };
  struct Detection {
    std::uint64_t camera_id = 0;
    Ids trigger_ids;
  };

  explicit Plain_Model(const Site_Builder& site);

  std::map<std::uint64_t, std::string> trigger_names;
  std::map<std::uint64_t, Subscription> subscriptions;
  std::map<std::uint64_t, Detection> detections;

  // Whether a write is to be accepted; an accepted one is done. New records get `id`.
  bool add_trigger(const trigger& added);
  bool update_trigger(const trigger& changed);
  bool may_add(const metadata_event_subscription& added) const;
  bool may_add(const eta_camera& added) const;
  void add(const metadata_event_subscription& added);
  void add(const eta_camera& added);
  bool update(std::uint64_t subscription_id, const Trigger_Link_Changes& changes);
  bool update_detection(std::uint64_t id, const Trigger_Link_Changes& changes);
  void delete_triggers_except(const Ids& kept);
  void delete_stale_subscriptions();
  void delete_stale_detections();

  // The answers, as the texts of the records.
  std::vector<std::string> answer(const Subscription_Query& query) const;
  std::vector<std::string> answer(const Detection_Query& query) const;
  std::vector<std::string> stale(const Ids& live) const;
  std::vector<std::uint64_t> cameras_matching(const Terms& terms) const;
  std::vector<std::uint64_t> cameras_needing(const std::string& topic, const Ids& candidates) const;
  std::vector<std::uint64_t> object_detection_cameras(const Ids& candidates) const;
  std::vector<std::uint64_t> motion_detection_cameras(const Ids& candidates) const;

 private:
  bool all_stored(const Ids& trigger_ids) const;
  bool change_links(Ids& trigger_ids, const Trigger_Link_Changes& changes) const;

  const Site_Builder& site_;
};

}  // namespace kuv::test
