// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "vemora/embedded_server/persistent/index/camera_index.h"
#include "vemora/embedded_server/persistent/index/id_hash.h"
#include "vemora/embedded_server/persistent/index/linked_records.h"
#include "vemora/embedded_server/persistent/index/subscription_match.h"
#include "vemora/embedded_server/persistent/index/tag_postings.h"
#include "vemora/embedded_server/persistent/index/trigger_index.h"
#include "vemora/embedded_server/persistent/mapping/rows.h"
#include "vemora/platform/repositories/metadata_event_subscription_repository.h"

namespace kuv::vemora::embedded_server {

/// The subscriptions as a pass sees them.
class Subscription_Index {
 public:
  using Record = metadata_event_subscription;
  using List = Metadata_Event_Subscription_Repository::Subscription_List;
  using Query = Metadata_Event_Subscription_Repository::Get_Matching_Subscriptions_Params;

  /// What the database does not hold yet, or holds no longer.
  struct Net_Changes {
    /// What stands with the records in tables of its own.
    struct Details {
      std::vector<rows::Subscription_Tag> tags;
      std::vector<rows::Subscription_Camera> cameras;
    };

    std::vector<rows::Subscription> added;
    std::vector<std::uint64_t> deleted;
    Details added_details;
    Details deleted_details;
    Changes::Of<Changes::Link> links;
    std::set<std::uint64_t> cameras;  ///< whose streams these changes concern

    bool empty() const { return added.empty() && deleted.empty() && links.empty(); }
  };

  Subscription_Index(odb::database& database, const Camera_Index& cameras,
                     const Trigger_Index& triggers);

  /// The cameras of the subscriptions for one topic; good until one is added or deleted.
  class Cameras_On_Topic;
  Cameras_On_Topic cameras_on(const std::string& topic) const;

  List all() const { return records_.all(); }
  std::size_t count_topic_subscriptions() const;
  List matching(const Query& query);

  /// The topic subscriptions that delete_without_triggers deletes once all other triggers are.
  List holding_none_of(const std::set<std::uint64_t>& live_trigger_ids) const {
    return records_.holding_none_of(live_trigger_ids, is_topic_kind);
  }

  bool add(const std::shared_ptr<Record>& added);
  bool update(const std::shared_ptr<Record>& changed);
  void drop_triggers(const std::set<std::uint64_t>& dead) { records_.drop_triggers(dead); }
  void delete_without_triggers();

  /// Puts a fresh record of a trigger in the place of one that carries refused changes.
  void replace_trigger(const std::shared_ptr<trigger>& fresh) { records_.replace_trigger(fresh); }

  Net_Changes settle();
  void save_ids(odb::database& database) { records_.save_ids(database); }

 private:
  using Records = Linked_Records<Record>;
  using Entry = Records::Entry;
  using Entries_By_Camera = std::unordered_map<std::uint64_t, Entry*, Id_Hash>;

  /// Whether there is one for that camera and topic.
  bool exists(std::uint64_t camera_id, const std::string& topic) const;

  void load_records(odb::database& database);
  void load_tags(odb::database& database);
  void load_cameras(odb::database& database);
  void enter(Entry& entry);

  /// Null where the site has none with this id.
  std::shared_ptr<metadata_event_category> category(std::uint64_t id) const;
  bool references_are_stored(const Record& record) const;

  Records::Entry_List candidates(const Query& query);
  Records::Entry_List candidates_by_topic(const Query& query) const;
  Records::Entry_List candidates_by_tag(const Query& query) const;

  const Camera_Index& cameras_;
  const Trigger_Index& triggers_;
  std::unordered_map<std::uint64_t, std::shared_ptr<metadata_event_category>, Id_Hash> categories_;
  Records records_;
  std::map<std::string, Entries_By_Camera> by_topic_;
  std::vector<Entry*> generic_;  ///< ascending by id
  Tag_Postings<Entry*> tags_;    ///< of the generic ones
};

class Subscription_Index::Cameras_On_Topic {
 public:
  explicit Cameras_On_Topic(const Entries_By_Camera* entries) : entries_(entries) {}

  bool contain(std::uint64_t camera_id) const {
    return entries_ != nullptr && entries_->count(camera_id) != 0;
  }

 private:
  const Entries_By_Camera* entries_;  ///< null where there are none
};

}  // namespace kuv::vemora::embedded_server
