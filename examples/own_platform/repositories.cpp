// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "repositories.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "rows.h"
#include "vemora/platform/tags/tag_filter.h"

namespace own_platform {
namespace {

using namespace kuv::vemora;
using Ids = std::set<std::uint64_t>;

/// What all of them have.
class On_Store {
 protected:
  explicit On_Store(std::shared_ptr<Store> store) : store_(std::move(store)) {}

  /// The ids of the rows that are wanted, in ascending order.
  template <class Wanted>
  Ids ids_where(const std::string& table, Wanted is_wanted) const {
    Ids ids;
    const Json::Value& rows = store_->table(table);
    for (auto row = rows.begin(); row != rows.end(); ++row) {
      if (is_wanted(*row)) {
        ids.insert(id_of(row.name()));
      }
    }
    return ids;
  }

  void delete_rows(const std::string& table, const Ids& ids) const {
    for (const std::uint64_t id : ids) {
      store_->table(table).removeMember(key_of(id));
    }
  }

  bool are_triggers(const Ids& ids) const {
    return std::all_of(ids.begin(), ids.end(),
                       [this](std::uint64_t id) { return store_->has("triggers", id); });
  }

  /// Stores what changed in the links of a record, and forgets that it changed.
  bool store_links(const std::string& table, std::uint64_t id,
                   Trigger_Link_Changes& changes) const {
    if (!store_->has(table, id) || !are_triggers({changes.added.begin(), changes.added.end()})) {
      return false;
    }
    Json::Value& stored = store_->table(table)[key_of(id)]["triggers"];
    Ids ids = ids_in(stored);
    ids.insert(changes.added.begin(), changes.added.end());
    for (const std::uint64_t removed : changes.removed) {
      ids.erase(removed);
    }
    stored = list_of(ids);
    changes = {};
    return true;
  }

  std::shared_ptr<Store> store_;
};

Ids ids_of(const std::vector<std::shared_ptr<camera>>& cameras) {
  Ids ids;
  for (const std::shared_ptr<camera>& record : cameras) {
    ids.insert(record->id);
  }
  return ids;
}

bool is_for(const Json::Value& subscription, std::uint64_t camera_id, const std::string& topic) {
  return subscription.isMember("camera") && subscription["camera"].asUInt64() == camera_id &&
         subscription.isMember("topic") && subscription["topic"].asString() == topic;
}

class Own_Camera_Repository : public Camera_Repository, On_Store {
 public:
  explicit Own_Camera_Repository(std::shared_ptr<Store> store) : On_Store(std::move(store)) {}

  Camera_List get_cameras_matching_tags(
      const std::set<ODB_Utils::Tag_Search_Term>& terms) override {
    return those_of(
        {}, [&terms](const camera& record) { return Tag_Filter::matches_any(record.tags, terms); });
  }

  Camera_List get_cameras_needing_subscription(const std::string& onvif_topic,
                                               const Camera_List& cameras) override {
    return those_of(cameras, [this, &onvif_topic](const camera& record) {
      return ids_where("subscriptions",
                       [&](const Json::Value& row) { return is_for(row, record.id, onvif_topic); })
          .empty();
    });
  }

  Camera_List get_object_detection_cameras(const Camera_List& cameras) override {
    return those_of(cameras, [](const camera& record) { return record.object_detection; });
  }

  Camera_List get_motion_detection_cameras(const Camera_List& cameras) override {
    return those_of(cameras, [](const camera& record) { return record.motion_detection; });
  }

 private:
  template <class Wanted>
  Camera_List those_of(const Camera_List& cameras, Wanted is_wanted) const {
    const Ids named = ids_of(cameras);
    Camera_List found;
    for (const std::uint64_t id : ids_where("cameras", [](const Json::Value&) { return true; })) {
      const auto record = load_camera(*store_, id);
      if ((named.empty() || named.count(id) == 1) && is_wanted(*record)) {
        found.push_back(record);
      }
    }
    return found;
  }
};

class Own_Server_Repository : public Server_Repository, On_Store {
 public:
  explicit Own_Server_Repository(std::shared_ptr<Store> store) : On_Store(std::move(store)) {}

  std::shared_ptr<server> get_by_id(std::uint64_t id) override {
    const Json::Value& row = store_->row("servers", id);
    return row.isNull()
               ? nullptr
               : std::make_shared<server>(server{id, row["name"].asString(), tags_of(row["tags"])});
  }
};

class Own_Schedule_Repository : public Schedule_Repository, On_Store {
 public:
  explicit Own_Schedule_Repository(std::shared_ptr<Store> store) : On_Store(std::move(store)) {}

  std::shared_ptr<schedule> get_by_id(std::uint64_t id) override {
    return load_schedule(*store_, id);
  }
};

class Own_Category_Repository : public Metadata_Event_Category_Repository, On_Store {
 public:
  explicit Own_Category_Repository(std::shared_ptr<Store> store) : On_Store(std::move(store)) {}

  std::shared_ptr<metadata_event_category> find_by_name(const std::string& name) override {
    const Ids found = ids_where(
        "categories", [&name](const Json::Value& row) { return row["name"].asString() == name; });
    return found.empty() ? nullptr
                         : std::make_shared<metadata_event_category>(
                               metadata_event_category{*found.begin(), name});
  }
};

class Own_Trigger_Repository : public Trigger_Repository, On_Store {
 public:
  explicit Own_Trigger_Repository(std::shared_ptr<Store> store) : On_Store(std::move(store)) {}

  std::shared_ptr<trigger> find_by_id(std::uint64_t id) override {
    return load_trigger(*store_, id);
  }

  bool add(const std::shared_ptr<trigger>& added) override {
    return !store_->has("triggers", added->id) && store_row(*added);
  }

  bool update(const std::shared_ptr<trigger>& changed) override {
    return store_->has("triggers", changed->id) && store_row(*changed);
  }

  void delete_all_except(const std::set<std::uint64_t>& kept) override {
    delete_rows("triggers", not_in(kept, "triggers"));
    for (const char* const table : {"subscriptions", "detections"}) {
      Json::Value& rows = store_->table(table);
      for (auto row = rows.begin(); row != rows.end(); ++row) {
        Json::Value& links = (*row)["triggers"];
        Ids left = ids_in(links);
        for (const std::uint64_t id : ids_in(links)) {
          if (!store_->has("triggers", id)) {
            left.erase(id);
          }
        }
        links = list_of(left);
      }
    }
  }

  void delete_all() override { delete_all_except({}); }

 private:
  bool store_row(const trigger& record) const {
    for (const Trigger_Mapping_Entry& entry : record.schedules) {
      if (!store_->has("schedules", entry.schedule->id)) {
        return false;
      }
    }
    store_->table("triggers")[key_of(record.id)] = row_of(record);
    return true;
  }

  Ids not_in(const Ids& kept, const std::string& table) const {
    Ids ids = ids_where(table, [](const Json::Value&) { return true; });
    for (const std::uint64_t id : kept) {
      ids.erase(id);
    }
    return ids;
  }
};

class Own_Subscription_Repository : public Metadata_Event_Subscription_Repository, On_Store {
 public:
  using Params = Get_Matching_Subscriptions_Params;

  explicit Own_Subscription_Repository(std::shared_ptr<Store> store) : On_Store(std::move(store)) {}

  bool add(const std::shared_ptr<metadata_event_subscription>& added) override {
    if (!added->camera || !added->onvif_topic || !store_->has("cameras", added->camera_id())) {
      return false;
    }
    const auto trigger_ids = added->trigger_ids();
    const Ids links(trigger_ids.begin(), trigger_ids.end());
    const Ids taken = ids_where("subscriptions", [&added](const Json::Value& row) {
      return is_for(row, added->camera_id(), *added->onvif_topic);
    });
    if (!taken.empty() || !are_triggers(links)) {
      return false;
    }
    Json::Value row;
    row["name"] = added->name;
    row["topic"] = *added->onvif_topic;
    row["camera"] = Json::UInt64(added->camera_id());
    row["triggers"] = list_of(links);
    added->id = store_->unused_id("subscriptions");
    added->link_changes = {};
    store_->table("subscriptions")[key_of(added->id)] = row;
    return true;
  }

  bool update(const std::shared_ptr<metadata_event_subscription>& changed) override {
    return store_links("subscriptions", changed->id, changed->link_changes);
  }

  Subscription_List Get_Matching_Subscriptions(const Params& params) override {
    return load(ids_where("subscriptions", [&params](const Json::Value& row) {
      return holds_or_lacks(params, row) && is_of_kind(params.kind, row) &&
             is_inside(params, row) ==
                 (params.topics_and_cameras == Params::Topics_And_Cameras::matching) &&
             Tag_Filter::matches_any(tags_of(row["tags"]), params.tags) ==
                 (params.tags_match == Params::Tags::matching);
    }));
  }

  Subscription_List get_stale(const std::set<std::uint64_t>& live_trigger_ids) override {
    return load(ids_where("subscriptions", [&live_trigger_ids](const Json::Value& row) {
      const Ids links = ids_in(row["triggers"]);
      const bool is_served = std::any_of(
          links.begin(), links.end(),
          [&live_trigger_ids](std::uint64_t id) { return live_trigger_ids.count(id) == 1; });
      return live_trigger_ids.empty() || (is_of_kind(Params::Kind::topic, row) && !is_served);
    }));
  }

  void delete_stale() override {
    delete_rows("subscriptions", ids_where("subscriptions", [](const Json::Value& row) {
                  return is_of_kind(Params::Kind::topic, row) && row["triggers"].empty();
                }));
  }

 private:
  static bool holds_or_lacks(const Params& params, const Json::Value& row) {
    const bool wants_holders = params.trigger_match == Params::Trigger_Match::holding;
    return !params.trigger ||
           (ids_in(row["triggers"]).count(params.trigger->id) == 1) == wants_holders;
  }

  static bool is_of_kind(Params::Kind kind, const Json::Value& row) {
    const bool has_camera = row.isMember("camera");
    const bool has_topic = row.isMember("topic");
    return kind == Params::Kind::any ||
           (kind == Params::Kind::topic ? has_camera && has_topic : !has_camera && !has_topic);
  }

  /// An empty list of topics restricts nothing where the subscriptions inside are asked for, and
  /// has nothing inside where those outside are.
  static bool is_inside(const Params& params, const Json::Value& row) {
    const bool wants_inside = params.topics_and_cameras == Params::Topics_And_Cameras::matching;
    const bool on_topic =
        params.topics.empty()
            ? wants_inside
            : row.isMember("topic") && std::count(params.topics.begin(), params.topics.end(),
                                                  row["topic"].asString()) != 0;
    const bool on_camera =
        params.cameras.empty() ||
        (row.isMember("camera") && ids_of(params.cameras).count(row["camera"].asUInt64()) == 1);
    return on_topic && on_camera;
  }

  Subscription_List load(const Ids& ids) const {
    Subscription_List records;
    for (const std::uint64_t id : ids) {
      records.push_back(load_subscription(*store_, id));
    }
    return records;
  }
};

class Own_ETA_Camera_Repository : public ETA_Camera_Repository, On_Store {
 public:
  explicit Own_ETA_Camera_Repository(std::shared_ptr<Store> store) : On_Store(std::move(store)) {}

  std::shared_ptr<eta_camera> get_by_camera_id(std::uint64_t camera_id) override {
    const Ids found = ids_where("detections", [camera_id](const Json::Value& row) {
      return row["camera"].asUInt64() == camera_id;
    });
    return found.empty() ? nullptr : load_detection(*store_, *found.begin());
  }

  bool add(const std::shared_ptr<eta_camera>& added) override {
    if (!added->camera || !store_->has("cameras", added->camera_id()) ||
        get_by_camera_id(added->camera_id())) {
      return false;
    }
    Ids links;
    for (const std::shared_ptr<trigger>& held : added->triggers) {
      links.insert(held->id);
    }
    if (!are_triggers(links)) {
      return false;
    }
    Json::Value row;
    row["camera"] = Json::UInt64(added->camera_id());
    row["triggers"] = list_of(links);
    added->id = store_->unused_id("detections");
    added->link_changes = {};
    store_->table("detections")[key_of(added->id)] = row;
    return true;
  }

  bool update(const std::shared_ptr<eta_camera>& changed) override {
    return store_links("detections", changed->id, changed->link_changes);
  }

  Record_List get(const Get_Params& params) override {
    const Ids named = ids_of(params.cameras);
    return load(ids_where("detections", [&params, &named](const Json::Value& row) {
      const bool holds = !params.trigger || ids_in(row["triggers"]).count(params.trigger->id) == 1;
      const bool is_named = named.count(row["camera"].asUInt64()) == 1;
      return holds &&
             (named.empty() || is_named == (params.cameras_match == Get_Params::Cameras::matching));
    }));
  }

  Record_List get_all() override { return get({}); }

  void delete_stale() override {
    delete_rows("detections", ids_where("detections", [](const Json::Value& row) {
                  return row["triggers"].empty();
                }));
  }

 private:
  Record_List load(const Ids& ids) const {
    Record_List records;
    for (const std::uint64_t id : ids) {
      records.push_back(load_detection(*store_, id));
    }
    return records;
  }
};

}  // namespace

std::shared_ptr<Repository> make_repository(const std::shared_ptr<Store>& store) {
  return std::make_shared<Repository>(std::make_unique<Own_Camera_Repository>(store),
                                      std::make_unique<Own_Server_Repository>(store),
                                      std::make_unique<Own_Category_Repository>(store),
                                      std::make_unique<Own_Subscription_Repository>(store),
                                      std::make_unique<Own_Trigger_Repository>(store),
                                      std::make_unique<Own_Schedule_Repository>(store),
                                      std::make_unique<Own_ETA_Camera_Repository>(store));
}

}  // namespace own_platform
