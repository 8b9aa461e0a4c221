// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/plan/plan.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <tuple>
#include <utility>

#include "vemora/embedded_server/persistent/history.h"
#include "vemora/embedded_server/persistent/site_digest.h"
#include "vemora/embedded_server/persistent/site_reader.h"
#include "vemora/operations/plan/linked_changes.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Changes;
using embedded_server::Database;
using embedded_server::Documents;
using embedded_server::Json_Document;
using embedded_server::Pass_Outcome;

Planned_Ids served_by(const metadata_event_subscription& record) {
  return record.trigger_ids();
}

Planned_Ids served_by(const eta_camera& record) {
  Planned_Ids ids;
  for (const std::shared_ptr<trigger>& held : record.triggers) {
    ids.push_back(held->id);
  }
  return ids;
}

/// Records of one kind by id, and whom they served when they were read: a pass changes the records.
template <class Record>
struct Read_Records {
  explicit Read_Records(const std::vector<std::shared_ptr<Record>>& list) {
    for (const std::shared_ptr<Record>& record : list) {
      records.emplace_hint(records.end(), record->id, record);
      served.emplace_hint(served.end(), record->id, served_by(*record));
    }
  }

  std::map<std::uint64_t, std::shared_ptr<Record>> records;
  std::map<std::uint64_t, Planned_Ids> served;
};

using Copied_Triggers = std::map<std::uint64_t, std::shared_ptr<const trigger>>;

Copied_Triggers copied(const std::vector<std::shared_ptr<trigger>>& records) {
  Copied_Triggers copies;
  for (const std::shared_ptr<trigger>& record : records) {
    copies.emplace_hint(copies.end(), record->id, std::make_shared<const trigger>(*record));
  }
  return copies;
}

/// Null when there is none.
std::shared_ptr<const trigger> find(const Copied_Triggers& triggers, std::uint64_t id) {
  const auto found = triggers.find(id);
  return found == triggers.end() ? nullptr : found->second;
}

/// The site as a pass finds it.
struct Site_Before {
  explicit Site_Before(const std::shared_ptr<Database>& database)
      : triggers(copied(read_triggers(database))),
        subscriptions(read_subscriptions(database)),
        detection(read_eta_cameras(database)),
        documents(read_documents(database)) {}

  Copied_Triggers triggers;
  Read_Records<metadata_event_subscription> subscriptions;
  Read_Records<eta_camera> detection;
  Documents documents;
};

std::vector<Planned_Trigger> planned_triggers(const Changes::Of<std::uint64_t>& changes,
                                              const Copied_Triggers& before,
                                              const Copied_Triggers& after) {
  std::vector<Planned_Trigger> planned;
  const auto plan = [&](Planned_Action action, const std::vector<std::uint64_t>& ids) {
    for (const std::uint64_t id : ids) {
      planned.push_back({action, id, find(before, id), find(after, id)});
    }
  };
  plan(Planned_Action::creation, changes.added);
  plan(Planned_Action::change, changes.updated);
  plan(Planned_Action::deletion, changes.deleted);
  std::sort(planned.begin(), planned.end(),
            [](const auto& left, const auto& right) { return left.id < right.id; });
  return planned;
}

/// The id of a record that a plan creates is nothing to rely on.
std::optional<std::uint64_t> told_id(const Linked_Change& change) {
  return change.action == Planned_Action::creation ? std::nullopt : std::make_optional(change.id);
}

template <class Record>
using Records_By_Id = std::map<std::uint64_t, std::shared_ptr<Record>>;

std::vector<Planned_Subscription> planned_subscriptions(
    const std::vector<Linked_Change>& changes,
    const Records_By_Id<metadata_event_subscription>& records) {
  std::vector<Planned_Subscription> planned;
  for (const Linked_Change& change : changes) {
    const metadata_event_subscription& record = *records.at(change.id);
    planned.push_back({change.action, told_id(change), record.name,
                       record.camera ? std::make_optional(record.camera_id()) : std::nullopt,
                       record.onvif_topic, change.triggers});
  }
  const auto place = [](const Planned_Subscription& item) {
    return std::make_tuple(!item.id, item.id, item.camera_id, std::cref(item.onvif_topic));
  };
  std::sort(planned.begin(), planned.end(),
            [&](const auto& left, const auto& right) { return place(left) < place(right); });
  return planned;
}

std::vector<Planned_Detection> planned_detection(const std::vector<Linked_Change>& changes,
                                                 const Records_By_Id<eta_camera>& records) {
  std::vector<Planned_Detection> planned;
  planned.reserve(changes.size());
  for (const Linked_Change& change : changes) {
    planned.push_back(
        {change.action, told_id(change), records.at(change.id)->camera_id(), change.triggers});
  }
  const auto place = [](const Planned_Detection& item) {
    return std::make_tuple(!item.id, item.id, item.camera_id);
  };
  std::sort(planned.begin(), planned.end(),
            [&](const auto& left, const auto& right) { return place(left) < place(right); });
  return planned;
}

/// Those before, and those that are created.
template <class Record>
Records_By_Id<Record> all_records(const Records_By_Id<Record>& before,
                                  const std::vector<std::shared_ptr<Record>>& after) {
  Records_By_Id<Record> all = before;
  for (const std::shared_ptr<Record>& record : after) {
    all.emplace(record->id, record);
  }
  return all;
}

void name_triggers(const Copied_Triggers& triggers, std::map<std::uint64_t, std::string>& names) {
  for (const auto& [id, record] : triggers) {
    names[id] = record->name;
  }
}

/// To be called in the transaction of the plan, when the pass has been run.
void tell_changes(const Site_Before& before, const Changes& changes,
                  const std::shared_ptr<Database>& database, Plan& plan) {
  const Copied_Triggers after = copied(read_triggers(database));
  plan.triggers = planned_triggers(changes.triggers, before.triggers, after);
  plan.subscriptions = planned_subscriptions(
      linked_changes(before.subscriptions.served, changes.subscriptions,
                     changes.subscription_links),
      all_records(before.subscriptions.records, read_subscriptions(database)));
  plan.detection = planned_detection(
      linked_changes(before.detection.served, changes.eta_cameras, changes.eta_camera_links),
      all_records(before.detection.records, read_eta_cameras(database)));
  name_triggers(before.triggers, plan.trigger_names);
  name_triggers(after, plan.trigger_names);
  for (const std::shared_ptr<camera>& record : read_cameras(database)) {
    plan.cameras[record->id] = {record->name, record->tags};
  }
}

void tell_documents(const Documents& before, const Json_Document& config,
                    const Json_Document* mapping, Plan& plan) {
  plan.replaces_config = before.config != config.text();
  plan.replaces_mapping = mapping != nullptr && before.mapping != mapping->text();
}

}  // namespace

bool Plan::changes_nothing() const {
  return outcome.changes.empty() && outcome.reconciled.empty() && !replaces_config &&
         !replaces_mapping;
}

Plan make_plan(const embedded_server::Trigger_Host& host, const std::shared_ptr<Database>& database,
               const Json_Document& config, const Json_Document* mapping, Site_Digest digest) {
  Plan plan;
  std::optional<Site_Before> before;
  const auto look_before = [&] {
    if (digest == Site_Digest::wanted) {
      plan.site_digest = digest_of_site(database);
      plan.last_pass = last_pass_in_history(database);
    }
    before.emplace(database);
  };
  const auto look_after = [&](const Pass_Outcome& outcome) {
    tell_changes(*before, outcome.changes, database, plan);
    if (outcome.status == Pass_Outcome::Status::done) {
      tell_documents(before->documents, config, mapping, plan);
    }
  };
  plan.outcome = host.plan(config, mapping, {look_before, look_after});
  return plan;
}

}  // namespace kuv::vemora::operations
