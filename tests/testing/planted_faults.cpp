// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "testing/planted_faults.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "vemora/testing/builders/record_builders.h"

namespace kuv::test {
namespace {

using Subscriptions = In_Memory_Metadata_Event_Subscription_Repository;
using Triggers = In_Memory_Trigger_Repository;
using Detections = In_Memory_ETA_Camera_Repository;
using Cameras = In_Memory_Camera_Repository;
using Servers = In_Memory_Server_Repository;
using Schedules = In_Memory_Schedule_Repository;
using Categories = In_Memory_Metadata_Event_Category_Repository;

using Subscription = std::shared_ptr<metadata_event_subscription>;
using Detection = std::shared_ptr<eta_camera>;
using Trigger = std::shared_ptr<trigger>;

template <class Faulty>
void put_in(In_Memory_Parts& parts, const std::shared_ptr<In_Memory_Tables>& tables) {
  if constexpr (std::is_base_of_v<Metadata_Event_Subscription_Repository, Faulty>) {
    parts.subscriptions = std::make_unique<Faulty>(tables);
  } else if constexpr (std::is_base_of_v<Trigger_Repository, Faulty>) {
    parts.triggers = std::make_unique<Faulty>(tables);
  } else if constexpr (std::is_base_of_v<ETA_Camera_Repository, Faulty>) {
    parts.eta_cameras = std::make_unique<Faulty>(tables);
  } else if constexpr (std::is_base_of_v<Camera_Repository, Faulty>) {
    parts.cameras = std::make_unique<Faulty>(tables);
  } else if constexpr (std::is_base_of_v<Server_Repository, Faulty>) {
    parts.servers = std::make_unique<Faulty>(tables);
  } else if constexpr (std::is_base_of_v<Schedule_Repository, Faulty>) {
    parts.schedules = std::make_unique<Faulty>(tables);
  } else {
    parts.categories = std::make_unique<Faulty>(tables);
  }
}

// Queries of subscriptions.

struct Any_Kind_Will_Do : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List Get_Matching_Subscriptions(const Params& params) override {
    Params asked = params;
    asked.kind = Params::Kind::any;
    return Subscriptions::Get_Matching_Subscriptions(asked);
  }
};

struct Lacking_Is_Holding : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List Get_Matching_Subscriptions(const Params& params) override {
    Params asked = params;
    asked.trigger_match = Params::Trigger_Match::holding;
    return Subscriptions::Get_Matching_Subscriptions(asked);
  }
};

struct No_Trigger_Is_Nobody : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List Get_Matching_Subscriptions(const Params& params) override {
    return params.trigger ? Subscriptions::Get_Matching_Subscriptions(params) : Subscription_List();
  }
};

struct Tags_Always_Match : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List Get_Matching_Subscriptions(const Params& params) override {
    Params asked = params;
    asked.tags_match = Params::Tags::matching;
    return Subscriptions::Get_Matching_Subscriptions(asked);
  }
};

struct No_Terms_Match_Nothing : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List Get_Matching_Subscriptions(const Params& params) override {
    const bool asks_nothing = params.tags.empty() && params.tags_match == Params::Tags::matching;
    return asks_nothing ? Subscription_List() : Subscriptions::Get_Matching_Subscriptions(params);
  }
};

struct Outside_Is_Inside : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List Get_Matching_Subscriptions(const Params& params) override {
    Params asked = params;
    asked.topics_and_cameras = Params::Topics_And_Cameras::matching;
    return Subscriptions::Get_Matching_Subscriptions(asked);
  }
};

struct Outside_Needs_A_Topic : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List Get_Matching_Subscriptions(const Params& params) override {
    Params asked = params;
    if (asked.topics.empty()) {
      asked.topics_and_cameras = Params::Topics_And_Cameras::matching;
    }
    return Subscriptions::Get_Matching_Subscriptions(asked);
  }
};

struct Outside_Wants_Both_Elsewhere : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List Get_Matching_Subscriptions(const Params& params) override {
    Subscription_List found = Subscriptions::Get_Matching_Subscriptions(params);
    if (params.topics_and_cameras == Params::Topics_And_Cameras::outside) {
      const auto on_a_topic = [&params](const Subscription& record) {
        return record->onvif_topic &&
               std::count(params.topics.begin(), params.topics.end(), *record->onvif_topic) != 0;
      };
      found.erase(std::remove_if(found.begin(), found.end(), on_a_topic), found.end());
    }
    return found;
  }
};

struct Newest_First : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List get_stale(const std::set<std::uint64_t>& live) override {
    Subscription_List found = Subscriptions::get_stale(live);
    std::reverse(found.begin(), found.end());
    return found;
  }
};

struct Signed_Order : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List get_stale(const std::set<std::uint64_t>& live) override {
    Subscription_List found = Subscriptions::get_stale(live);
    std::sort(found.begin(), found.end(), [](const Subscription& left, const Subscription& right) {
      return static_cast<std::int64_t>(left->id) < static_cast<std::int64_t>(right->id);
    });
    return found;
  }
};

// Writes of subscriptions.

struct Refuses_And_Stores : Subscriptions {
  using Subscriptions::Subscriptions;
  bool add(const Subscription& added) override {
    if (Subscriptions::add(added)) {
      return true;
    }
    if (added->camera && added->onvif_topic) {
      tables_->subscriptions[take_id(*tables_, tables_->subscriptions)] = row_of(*added);
    }
    return false;
  }
};

struct Takes_Unknown_Triggers : Subscriptions {
  using Subscriptions::Subscriptions;
  bool add(const Subscription& added) override {
    for (const std::uint64_t id : added->trigger_ids()) {
      if (tables_->triggers.count(id) == 0) {
        added->remove_trigger(a_trigger(id));
      }
    }
    return Subscriptions::add(added);
  }
};

struct Takes_Cameras_That_Are_Gone : Subscriptions {
  using Subscriptions::Subscriptions;
  bool add(const Subscription& added) override {
    if (added->camera) {
      camera& stored = tables_->cameras[added->camera_id()];
      stored.id = added->camera_id();
    }
    return Subscriptions::add(added);
  }
};

struct Takes_No_Topic : Subscriptions {
  using Subscriptions::Subscriptions;
  bool add(const Subscription& added) override {
    if (!added->onvif_topic) {
      added->onvif_topic = "";
    }
    return Subscriptions::add(added);
  }
};

struct Gives_Ids_That_The_Site_Has : Subscriptions {
  using Subscriptions::Subscriptions;
  bool add(const Subscription& added) override {
    if (!Subscriptions::add(added)) {
      return false;
    }
    auto row = tables_->subscriptions.extract(added->id);
    row.key() = added->id = ++last_;
    tables_->subscriptions.erase(last_);
    tables_->subscriptions.insert(std::move(row));
    return true;
  }
  std::uint64_t last_ = 0;
};

struct Gives_The_Id_To_A_Copy : Subscriptions {
  using Subscriptions::Subscriptions;
  bool add(const Subscription& added) override {
    return Subscriptions::add(std::make_shared<metadata_event_subscription>(*added));
  }
};

struct Only_Adds_Links : Subscriptions {
  using Subscriptions::Subscriptions;
  bool update(const Subscription& changed) override {
    changed->link_changes.removed.clear();
    return Subscriptions::update(changed);
  }
};

struct Keeps_The_Notes_Of_Changes : Subscriptions {
  using Subscriptions::Subscriptions;
  bool update(const Subscription& changed) override {
    const Trigger_Link_Changes notes = changed->link_changes;
    const bool is_stored = Subscriptions::update(changed);
    changed->link_changes = notes;
    return is_stored;
  }
};

struct Stores_The_Whole_Set : Subscriptions {
  using Subscriptions::Subscriptions;
  bool update(const Subscription& changed) override {
    if (!Subscriptions::update(changed)) {
      return false;
    }
    const auto ids = changed->trigger_ids();
    tables_->subscriptions[changed->id].trigger_ids = {ids.begin(), ids.end()};
    return true;
  }
};

struct Stores_Half_Of_What_It_Refuses : Subscriptions {
  using Subscriptions::Subscriptions;
  bool update(const Subscription& changed) override {
    const auto found = tables_->subscriptions.find(changed->id);
    if (found != tables_->subscriptions.end()) {
      for (const std::uint64_t id : changed->link_changes.removed) {
        found->second.trigger_ids.erase(id);
      }
    }
    return Subscriptions::update(changed);
  }
};

struct Updates_What_Is_Not_There : Subscriptions {
  using Subscriptions::Subscriptions;
  bool update(const Subscription& changed) override {
    return tables_->subscriptions.count(changed->id) == 0 || Subscriptions::update(changed);
  }
};

struct Adds_What_It_Should_Update : Subscriptions {
  using Subscriptions::Subscriptions;
  bool update(const Subscription& changed) override {
    if (tables_->subscriptions.count(changed->id) == 0) {
      tables_->subscriptions[changed->id] = row_of(*changed);
    }
    return Subscriptions::update(changed);
  }
};

// Stale subscriptions.

struct Generic_Ones_Are_Stale : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List get_stale(const std::set<std::uint64_t>& live) override {
    return those_that([&live](const Row& row) {
      return std::none_of(row.trigger_ids.begin(), row.trigger_ids.end(),
                          [&live](std::uint64_t id) { return live.count(id) == 1; });
    });
  }
};

struct Nothing_Is_Stale_Without_Triggers : Subscriptions {
  using Subscriptions::Subscriptions;
  Subscription_List get_stale(const std::set<std::uint64_t>& live) override {
    return live.empty() ? those_that([](const Row& row) {
      return is_of_topic_kind(row) && row.trigger_ids.empty();
    })
                        : Subscriptions::get_stale(live);
  }
};

struct Deletes_Generic_Ones : Subscriptions {
  using Subscriptions::Subscriptions;
  void delete_stale() override {
    for (const auto& record : get_stale({})) {
      if (record->trigger_ids().empty()) {
        tables_->subscriptions.erase(record->id);
      }
    }
  }
};

struct Deletes_What_Has_A_Camera : Subscriptions {
  using Subscriptions::Subscriptions;
  void delete_stale() override {
    for (const auto& record : get_stale({})) {
      if (record->camera && record->trigger_ids().empty()) {
        tables_->subscriptions.erase(record->id);
      }
    }
  }
};

struct Deletes_No_Stale_Ones : Subscriptions {
  using Subscriptions::Subscriptions;
  void delete_stale() override {}
};

// Triggers.

struct Leaves_Links_Of_Deleted_Triggers : Triggers {
  using Triggers::Triggers;
  void delete_all_except(const std::set<std::uint64_t>& kept) override {
    for (auto row = tables_->triggers.begin(); row != tables_->triggers.end();) {
      row = kept.count(row->first) == 0 ? tables_->triggers.erase(row) : std::next(row);
    }
  }
};

struct Keeps_No_Large_Ids : Triggers {
  using Triggers::Triggers;
  void delete_all_except(const std::set<std::uint64_t>& kept) override {
    constexpr auto largest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    Triggers::delete_all_except({kept.begin(), kept.upper_bound(largest)});
  }
};

struct Replaces_A_Trigger_And_Refuses : Triggers {
  using Triggers::Triggers;
  bool add(const Trigger& added) override {
    const bool is_new = tables_->triggers.count(added->id) == 0;
    return store_row(*added) && is_new;
  }
};

struct Adds_A_Trigger_That_Is_Not_There : Triggers {
  using Triggers::Triggers;
  bool update(const Trigger& changed) override { return store_row(*changed); }
};

struct Takes_Schedules_That_Are_Gone : Triggers {
  using Triggers::Triggers;
  bool add(const Trigger& added) override {
    for (auto entry = added->schedules.begin(); entry != added->schedules.end();) {
      const bool is_gone = tables_->schedules.count(entry->schedule->id) == 0;
      entry = is_gone ? added->schedules.erase(entry) : std::next(entry);
    }
    return Triggers::add(added);
  }
};

struct Sees_No_Changed_Motion_Flag : Triggers {
  using Triggers::Triggers;
  bool update(const Trigger& changed) override {
    const auto found = tables_->triggers.find(changed->id);
    if (found == tables_->triggers.end()) {
      return false;
    }
    // As the ordering of sources compares them.
    const auto same = [](const Trigger_Source& left, const Trigger_Source& right) {
      return !(left < right) && !(right < left);
    };
    const auto& stored = found->second.sources;
    if (std::equal(stored.begin(), stored.end(), changed->sources.begin(), changed->sources.end(),
                   same)) {
      changed->sources = stored;
    }
    return Triggers::update(changed);
  }
};

struct Ends_Texts_At_A_Zero : Triggers {
  using Triggers::Triggers;
  bool add(const Trigger& added) override {
    added->name = added->name.c_str();
    return Triggers::add(added);
  }
};

struct Answers_An_Empty_Trigger : Triggers {
  using Triggers::Triggers;
  Trigger find_by_id(std::uint64_t id) override {
    const auto found = Triggers::find_by_id(id);
    return found ? found : std::make_shared<trigger>();
  }
};

// Detection records.

struct Takes_Two_Records_For_A_Camera : Detections {
  using Detections::Detections;
  bool add(const Detection& added) override {
    const auto taken = added->camera ? get_by_camera_id(added->camera_id()) : nullptr;
    if (!taken) {
      return Detections::add(added);
    }
    In_Memory_Tables::Detection row = tables_->detections[taken->id];
    tables_->detections[added->id = take_id(*tables_, tables_->detections)] = row;
    return true;
  }
};

struct Knows_No_Outside : Detections {
  using Detections::Detections;
  Record_List get(const Get_Params& params) override {
    Get_Params asked = params;
    asked.cameras_match = Get_Params::Cameras::matching;
    return Detections::get(asked);
  }
};

struct Nothing_Is_Outside_No_Cameras : Detections {
  using Detections::Detections;
  Record_List get(const Get_Params& params) override {
    const bool is_empty =
        params.cameras.empty() && params.cameras_match == Get_Params::Cameras::outside;
    return is_empty ? Record_List() : Detections::get(params);
  }
};

struct Orders_By_Camera : Detections {
  using Detections::Detections;
  Record_List get_all() override {
    Record_List found = Detections::get_all();
    std::sort(found.begin(), found.end(), [](const Detection& left, const Detection& right) {
      return left->camera_id() < right->camera_id();
    });
    return found;
  }
};

struct Loads_Ids_Of_Triggers_Alone : Detections {
  using Detections::Detections;
  Detection get_by_camera_id(std::uint64_t camera_id) override {
    const auto found = Detections::get_by_camera_id(camera_id);
    if (found) {
      std::set<Trigger, ODB_Utils::Record_Comparator> bare;
      for (const Trigger& held : found->triggers) {
        bare.insert(a_trigger(held->id));
      }
      found->triggers = bare;
    }
    return found;
  }
};

struct Deletes_Detection_That_Is_Needed : Detections {
  using Detections::Detections;
  void delete_stale() override { tables_->detections.clear(); }
};

// Cameras.

struct No_Cameras_For_An_Empty_List : Cameras {
  using Cameras::Cameras;
  Camera_List get_object_detection_cameras(const Camera_List& cameras) override {
    return cameras.empty() ? Camera_List() : Cameras::get_object_detection_cameras(cameras);
  }
};

struct Forgets_The_List : Cameras {
  using Cameras::Cameras;
  Camera_List get_motion_detection_cameras(const Camera_List& /*cameras*/) override {
    return Cameras::get_motion_detection_cameras({});
  }
};

struct Answers_A_Camera_As_Often_As_It_Is_Named : Cameras {
  using Cameras::Cameras;
  Camera_List get_object_detection_cameras(const Camera_List& cameras) override {
    if (cameras.empty()) {
      return Cameras::get_object_detection_cameras({});
    }
    Camera_List found;
    for (const auto& named : cameras) {
      const auto stored = tables_->cameras.find(named->id);
      if (stored != tables_->cameras.end() && stored->second.object_detection) {
        found.push_back(named);
      }
    }
    return found;
  }
};

struct Answers_Null_For_A_Camera_That_Is_Gone : Cameras {
  using Cameras::Cameras;
  Camera_List get_object_detection_cameras(const Camera_List& cameras) override {
    Camera_List found = Cameras::get_object_detection_cameras(cameras);
    for (const auto& named : cameras) {
      if (tables_->cameras.count(named->id) == 0) {
        found.push_back(nullptr);
      }
    }
    return found;
  }
};

struct Wants_All_Terms : Cameras {
  using Cameras::Cameras;
  Camera_List get_cameras_matching_tags(const Terms& terms) override {
    return those_of({}, [&terms](const camera& record) {
      return std::all_of(terms.begin(), terms.end(),
                         [&record](const auto& term) { return satisfy_any(record.tags, {term}); });
    });
  }
};

struct Looks_At_Tag_Names_Alone : Cameras {
  using Cameras::Cameras;
  Camera_List get_cameras_matching_tags(const Terms& terms) override {
    Terms names;
    for (const auto& term : terms) {
      names.insert({term.name, std::nullopt});
    }
    return Cameras::get_cameras_matching_tags(names);
  }
};

struct Takes_A_Topic_For_A_Path : Cameras {
  using Cameras::Cameras;
  Camera_List get_cameras_needing_subscription(const std::string& onvif_topic,
                                               const Camera_List& cameras) override {
    Camera_List needing;
    for (const auto& record : Cameras::get_cameras_needing_subscription(onvif_topic, cameras)) {
      const auto& rows = tables_->subscriptions;
      const bool is_below = std::any_of(rows.begin(), rows.end(), [&](const auto& entry) {
        return entry.second.camera_id == record->id && entry.second.onvif_topic &&
               entry.second.onvif_topic->rfind(onvif_topic + ".", 0) == 0;
      });
      if (!is_below) {
        needing.push_back(record);
      }
    }
    return needing;
  }
};

struct Wants_Only_Cameras_That_Can_Send : Cameras {
  using Cameras::Cameras;
  Camera_List get_cameras_needing_subscription(const std::string& onvif_topic,
                                               const Camera_List& cameras) override {
    Camera_List able;
    for (const auto& record : Cameras::get_cameras_needing_subscription(onvif_topic, cameras)) {
      if (!record->capabilities.tree().empty()) {
        able.push_back(record);
      }
    }
    return able;
  }
};

// Servers, schedules, categories.

struct Loads_No_Tags_Of_Servers : Servers {
  using Servers::Servers;
  std::shared_ptr<server> get_by_id(std::uint64_t id) override {
    const auto found = Servers::get_by_id(id);
    if (found) {
      found->tags.clear();
    }
    return found;
  }
};

struct Finds_Usable_Schedules_Alone : Schedules {
  using Schedules::Schedules;
  std::shared_ptr<schedule> get_by_id(std::uint64_t id) override {
    const auto found = Schedules::get_by_id(id);
    return found && found->usable ? found : nullptr;
  }
};

struct Finds_Categories_By_Their_Beginning : Categories {
  using Categories::Categories;
  std::shared_ptr<metadata_event_category> find_by_name(const std::string& name) override {
    for (const auto& [id, record] : tables_->categories) {
      if (record.name.rfind(name, 0) == 0) {
        return find_record(tables_->categories, id);
      }
    }
    return nullptr;
  }
};

std::vector<Planted_Fault> faults_of_subscriptions() {
  const std::string of = "Subscription_Repository_Contract.";
  const std::string outside = "Inside_And_Outside.";
  return {
      {"any_kind_will_do", of + "tells_the_kinds_apart", put_in<Any_Kind_Will_Do>},
      {"lacking_is_holding", of + "tells_the_kinds_apart", put_in<Lacking_Is_Holding>},
      {"no_trigger_is_nobody", of + "tells_the_kinds_apart", put_in<No_Trigger_Is_Nobody>},
      {"tags_always_match", of + "matches_tags_by_name_and_by_value", put_in<Tags_Always_Match>},
      {"no_terms_match_nothing", of + "matches_tags_by_name_and_by_value",
       put_in<No_Terms_Match_Nothing>},
      {"outside_is_inside", outside + "are_complements_whatever_a_subscription_lacks",
       put_in<Outside_Is_Inside>},
      {"outside_needs_a_topic", outside + "are_nothing_and_everything_where_no_topic_is_named",
       put_in<Outside_Needs_A_Topic>},
      {"outside_wants_both_elsewhere", outside + "are_complements_whatever_a_subscription_lacks",
       put_in<Outside_Wants_Both_Elsewhere>},
      {"newest_first", of + "orders_by_unsigned_id", put_in<Newest_First>},
      {"signed_order", of + "orders_by_unsigned_id", put_in<Signed_Order>},
      {"refuses_and_stores", of + "takes_one_subscription_for_a_camera_and_topic",
       put_in<Refuses_And_Stores>},
      {"takes_unknown_triggers", of + "refuses_a_subscription_with_a_trigger_that_is_not_stored",
       put_in<Takes_Unknown_Triggers>},
      {"takes_cameras_that_are_gone", of + "refuses_a_subscription_of_a_camera_that_is_not_stored",
       put_in<Takes_Cameras_That_Are_Gone>},
      {"takes_no_topic", of + "refuses_a_subscription_without_a_camera_or_without_a_topic",
       put_in<Takes_No_Topic>},
      {"gives_ids_that_the_site_has", of + "gives_ids_that_are_not_taken_by_the_site",
       put_in<Gives_Ids_That_The_Site_Has>},
      {"gives_the_id_to_a_copy", of + "gives_a_new_subscription_an_id_and_keeps_all_of_it",
       put_in<Gives_The_Id_To_A_Copy>},
      {"only_adds_links", of + "stores_triggers_that_join_and_leave", put_in<Only_Adds_Links>},
      {"keeps_the_notes_of_changes", of + "stores_the_same_record_again_and_again",
       put_in<Keeps_The_Notes_Of_Changes>},
      {"stores_the_whole_set", of + "keeps_for_later_what_was_not_handed_over_with_a_copy",
       put_in<Stores_The_Whole_Set>},
      {"stores_half_of_what_it_refuses", of + "answers_the_stored_links_after_a_refused_update",
       put_in<Stores_Half_Of_What_It_Refuses>},
      {"updates_what_is_not_there", of + "refuses_to_update_a_subscription_that_is_not_stored",
       put_in<Updates_What_Is_Not_There>},
      {"adds_what_it_should_update", of + "refuses_to_update_a_subscription_that_was_deleted",
       put_in<Adds_What_It_Should_Update>},
      {"generic_ones_are_stale", of + "calls_topic_subscriptions_without_live_triggers_stale",
       put_in<Generic_Ones_Are_Stale>},
      {"nothing_is_stale_without_triggers",
       of + "calls_topic_subscriptions_without_live_triggers_stale",
       put_in<Nothing_Is_Stale_Without_Triggers>},
      {"deletes_generic_ones", of + "deletes_exactly_what_it_called_stale",
       put_in<Deletes_Generic_Ones>},
      {"deletes_what_has_a_camera",
       "Subscriptions_Of_Half_A_Kind.are_left_to_whoever_looks_at_them",
       put_in<Deletes_What_Has_A_Camera>},
      {"deletes_no_stale_ones", of + "deletes_exactly_what_it_called_stale",
       put_in<Deletes_No_Stale_Ones>},
  };
}

std::vector<Planted_Fault> faults_of_triggers() {
  const std::string of = "Trigger_Repository_Contract.";
  return {
      {"leaves_links_of_deleted_triggers", of + "deletes_the_links_of_a_trigger_with_it",
       put_in<Leaves_Links_Of_Deleted_Triggers>},
      {"keeps_no_large_ids", of + "deletes_every_trigger_but_those_to_keep",
       put_in<Keeps_No_Large_Ids>},
      {"replaces_a_trigger_and_refuses", of + "refuses_a_second_trigger_of_an_id",
       put_in<Replaces_A_Trigger_And_Refuses>},
      {"adds_a_trigger_that_is_not_there", of + "refuses_to_update_a_trigger_that_is_not_stored",
       put_in<Adds_A_Trigger_That_Is_Not_There>},
      {"takes_schedules_that_are_gone", of + "refuses_a_trigger_with_a_schedule_that_is_not_stored",
       put_in<Takes_Schedules_That_Are_Gone>},
      {"sees_no_changed_motion_flag", of + "stores_a_changed_motion_flag_and_a_changed_duration",
       put_in<Sees_No_Changed_Motion_Flag>},
      {"ends_texts_at_a_zero", of + "keeps_texts_byte_for_byte", put_in<Ends_Texts_At_A_Zero>},
      {"answers_an_empty_trigger", of + "finds_no_trigger_that_was_never_added",
       put_in<Answers_An_Empty_Trigger>},
  };
}

std::vector<Planted_Fault> faults_of_detections() {
  const std::string of = "ETA_Camera_Repository_Contract.";
  return {
      {"takes_two_records_for_a_camera", of + "takes_one_record_for_a_camera",
       put_in<Takes_Two_Records_For_A_Camera>},
      {"knows_no_outside", of + "finds_the_records_outside_a_list_of_cameras",
       put_in<Knows_No_Outside>},
      {"nothing_is_outside_no_cameras", of + "finds_the_records_outside_a_list_of_cameras",
       put_in<Nothing_Is_Outside_No_Cameras>},
      {"orders_by_camera", of + "finds_records_by_trigger_and_by_camera", put_in<Orders_By_Camera>},
      {"loads_ids_of_triggers_alone", of + "holds_the_triggers_with_all_that_they_carry",
       put_in<Loads_Ids_Of_Triggers_Alone>},
      {"deletes_detection_that_is_needed", of + "deletes_records_without_triggers",
       put_in<Deletes_Detection_That_Is_Needed>},
  };
}

std::vector<Planted_Fault> faults_of_the_site() {
  const std::string of = "Site_Records_Contract.";
  return {
      {"no_cameras_for_an_empty_list", of + "tell_which_cameras_take_part_in_detection",
       put_in<No_Cameras_For_An_Empty_List>},
      {"forgets_the_list", of + "tell_which_cameras_take_part_in_detection",
       put_in<Forgets_The_List>},
      {"answers_a_camera_as_often_as_it_is_named",
       of + "answer_each_camera_once_however_often_it_is_named",
       put_in<Answers_A_Camera_As_Often_As_It_Is_Named>},
      {"answers_null_for_a_camera_that_is_gone", of + "name_only_cameras_that_are_stored",
       put_in<Answers_Null_For_A_Camera_That_Is_Gone>},
      {"wants_all_terms", of + "match_camera_tags_by_name_and_by_value", put_in<Wants_All_Terms>},
      {"looks_at_tag_names_alone", of + "match_camera_tags_by_name_and_by_value",
       put_in<Looks_At_Tag_Names_Alone>},
      {"takes_a_topic_for_a_path", of + "tell_which_cameras_need_a_subscription",
       put_in<Takes_A_Topic_For_A_Path>},
      {"wants_only_cameras_that_can_send", of + "tell_which_cameras_need_a_subscription",
       put_in<Wants_Only_Cameras_That_Can_Send>},
      {"loads_no_tags_of_servers", of + "find_servers_with_their_tags",
       put_in<Loads_No_Tags_Of_Servers>},
      {"finds_usable_schedules_alone", of + "find_schedules_usable_or_not",
       put_in<Finds_Usable_Schedules_Alone>},
      {"finds_categories_by_their_beginning", of + "find_categories_by_their_whole_name",
       put_in<Finds_Categories_By_Their_Beginning>},
  };
}

}  // namespace

std::vector<Planted_Fault> planted_faults() {
  std::vector<Planted_Fault> all;
  for (const auto& some : {faults_of_subscriptions(), faults_of_triggers(), faults_of_detections(),
                           faults_of_the_site()}) {
    all.insert(all.end(), some.begin(), some.end());
  }
  return all;
}

}  // namespace kuv::test
