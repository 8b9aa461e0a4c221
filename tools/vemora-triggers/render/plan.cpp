// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/plan.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <map>
#include <set>
#include <vector>

#include "tools/vemora-triggers/render/camera_list.h"
#include "tools/vemora-triggers/render/counted.h"
#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/pass.h"
#include "tools/vemora-triggers/render/plan_json.h"
#include "tools/vemora-triggers/render/records.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::Pass_Outcome;
using embedded_server::printable;
using operations::Plan;
using operations::Planned_Action;
using operations::Planned_Detection;
using operations::Planned_Ids;
using operations::Planned_Links;
using operations::Planned_Subscription;
using operations::Planned_Trigger;

/// Where a trigger listens, as far as it changes.
struct Reach {
  std::map<std::string, Planned_Ids> cameras_by_topic;
  std::vector<std::string> generic_subscriptions;
  Planned_Ids detecting_cameras;
};

struct Trigger_Part {
  const Planned_Trigger* record = nullptr;  ///< null where the record stays as it is
  Reach gained;
  Reach lost;
};

using Parts = std::map<std::uint64_t, Trigger_Part>;

Planned_Ids those_without(const std::optional<Planned_Ids>& ids,
                          const std::optional<Planned_Ids>& others) {
  const Planned_Ids all = ids.value_or(Planned_Ids());
  const Planned_Ids out = others.value_or(Planned_Ids());
  Planned_Ids left;
  std::set_difference(all.begin(), all.end(), out.begin(), out.end(), std::back_inserter(left));
  return left;
}

template <class Take>
void for_each_move(Parts& parts, const Planned_Links& links, Take take) {
  for (const std::uint64_t id : those_without(links.after, links.before)) {
    take(parts[id].gained);
  }
  for (const std::uint64_t id : those_without(links.before, links.after)) {
    take(parts[id].lost);
  }
}

Parts parts_of(const Plan& plan) {
  Parts parts;
  for (const Planned_Trigger& planned : plan.triggers) {
    parts[planned.id].record = &planned;
  }
  for (const Planned_Subscription& planned : plan.subscriptions) {
    for_each_move(parts, planned.triggers, [&planned](Reach& reach) {
      if (planned.camera_id && planned.onvif_topic) {
        reach.cameras_by_topic[*planned.onvif_topic].push_back(*planned.camera_id);
      } else {
        reach.generic_subscriptions.push_back(
            fmt::format("{} \"{}\"", planned.id.value_or(0), printable(planned.name)));
      }
    });
  }
  for (const Planned_Detection& planned : plan.detection) {
    for_each_move(parts, planned.triggers, [&planned](Reach& reach) {
      reach.detecting_cameras.push_back(planned.camera_id);
    });
  }
  return parts;
}

void print_line(const char* indent, char sign, const std::string& text) {
  const std::string line = fmt::format("{}{} {}", indent, sign, text);
  std::cout << (sign == '-' ? in_red(line) : line) << '\n';
}

void print_detail(char sign, const std::string& text) {
  print_line("    ", sign, text);
}

std::string schedules_text(const trigger& record) {
  std::vector<std::string> texts;
  for (const Trigger_Mapping_Entry& entry : record.schedules) {
    texts.push_back(fmt::format("{} \"{}\"", entry.schedule->id, printable(entry.schedule->name)));
  }
  return texts.empty() ? "none" : fmt::format("{}", fmt::join(texts, ", "));
}

std::string source_text(const Trigger_Source& source) {
  std::string text = describe(source);
  if (source.activity_duration) {
    const Activity_Duration& activity = *source.activity_duration;
    const bool track = activity.mode == Activity_Duration_Mode::object_track;
    text += fmt::format(" ({}, dropout {} s)", track ? "object-track" : "object-presence",
                        static_cast<double>(activity.dropout.count()) / 1e6);
  }
  return "source " + text;
}

/// By everything that is in them.
std::map<std::string, std::string> source_texts(const trigger* record) {
  std::map<std::string, std::string> texts;
  if (record != nullptr) {
    for (const Trigger_Source& source : record->sources) {
      texts.emplace(Json_Texts().of(source_to_json(source)), source_text(source));
    }
  }
  return texts;
}

void print_sources(char sign, const std::map<std::string, std::string>& sources,
                   const std::map<std::string, std::string>& others) {
  for (const auto& [key, text] : sources) {
    if (others.count(key) == 0) {
      print_detail(sign, text);
    }
  }
}

void print_sources(const trigger* before, const trigger* after) {
  const auto old_ones = source_texts(before);
  const auto new_ones = source_texts(after);
  print_sources('+', new_ones, old_ones);
  print_sources('-', old_ones, new_ones);
}

void print_record(const Planned_Trigger& planned) {
  if (planned.action == Planned_Action::creation && !planned.after->schedules.empty()) {
    print_detail('+', "schedules " + schedules_text(*planned.after));
  }
  if (planned.action == Planned_Action::change) {
    if (planned.before->name != planned.after->name) {
      print_detail('~', fmt::format("name \"{}\" -> \"{}\"", printable(planned.before->name),
                                    printable(planned.after->name)));
    }
    const std::string before = schedules_text(*planned.before);
    const std::string after = schedules_text(*planned.after);
    if (before != after) {
      print_detail('~', fmt::format("schedules {} -> {}", before, after));
    }
  }
  if (planned.action != Planned_Action::deletion) {
    print_sources(planned.before.get(), planned.after.get());
  }
}

std::string on_cameras(const Plan& plan, const Planned_Ids& ids) {
  return fmt::format("{}: {}", counted(ids.size(), "camera", "cameras"),
                     camera_list(plan.cameras, ids));
}

void print_reach(const Plan& plan, char sign, Reach& reach) {
  for (auto& [topic, cameras] : reach.cameras_by_topic) {
    std::sort(cameras.begin(), cameras.end());
    print_detail(sign, fmt::format("{} on {}", printable(topic), on_cameras(plan, cameras)));
  }
  for (const std::string& subscription : reach.generic_subscriptions) {
    print_detail(sign, "subscription " + subscription);
  }
  if (!reach.detecting_cameras.empty()) {
    std::sort(reach.detecting_cameras.begin(), reach.detecting_cameras.end());
    print_detail(sign, "detection on " + on_cameras(plan, reach.detecting_cameras));
  }
}

char sign_of(Planned_Action action) {
  switch (action) {
    case Planned_Action::creation:
      return '+';
    case Planned_Action::deletion:
      return '-';
    case Planned_Action::change:
      break;
  }
  return '~';
}

std::string trigger_text(const Plan& plan, std::uint64_t id) {
  const auto found = plan.trigger_names.find(id);
  return found == plan.trigger_names.end()
             ? fmt::format("trigger {}", id)
             : fmt::format("trigger {} \"{}\"", id, printable(found->second));
}

void print_triggers(const Plan& plan) {
  for (auto& [id, part] : parts_of(plan)) {
    if (part.record != nullptr) {
      print_line("", sign_of(part.record->action), trigger_text(plan, id));
      print_record(*part.record);
    } else {
      print_line("", '~', trigger_text(plan, id) + ", defined as before");
    }
    Reach gained = part.gained;
    Reach lost = part.lost;
    print_reach(plan, '+', gained);
    print_reach(plan, '-', lost);
  }
}

/// Whatever is deleted is named, however much it is.
void print_deleted_records(const Plan& plan) {
  for (const Planned_Subscription& planned : plan.subscriptions) {
    if (planned.action == Planned_Action::deletion) {
      print_line("", '-',
                 fmt::format("subscription {}: {} on camera {}", planned.id.value_or(0),
                             printable(planned.onvif_topic.value_or(planned.name)),
                             camera_text(plan.cameras, planned.camera_id.value_or(0))));
    }
  }
  for (const Planned_Detection& planned : plan.detection) {
    if (planned.action == Planned_Action::deletion) {
      print_line("", '-',
                 "detection record of camera " + camera_text(plan.cameras, planned.camera_id));
    }
  }
}

template <class Items>
std::string counts_of(const Items& items, const char* one, const char* many) {
  const auto count = [&items](Planned_Action action) {
    return std::count_if(items.begin(), items.end(),
                         [action](const auto& item) { return item.action == action; });
  };
  return fmt::format("{} (+{} ~{} -{})", counted(items.size(), one, many),
                     count(Planned_Action::creation), count(Planned_Action::change),
                     count(Planned_Action::deletion));
}

void print_documents(const Plan& plan) {
  if (plan.replaces_config) {
    print_line("", '~', "the stored configuration");
  }
  if (plan.replaces_mapping) {
    print_line("", '~', "the stored mapping");
  }
}

void print_closing_line(const Plan& plan) {
  if (plan.changes_nothing()) {
    std::cout << "Nothing would change.\n";
    return;
  }
  std::cout << fmt::format("Would change: {}, {}, {}; {} to reconcile. Nothing is written yet.\n",
                           counts_of(plan.triggers, "trigger", "triggers"),
                           counts_of(plan.subscriptions, "subscription", "subscriptions"),
                           counts_of(plan.detection, "detection record", "detection records"),
                           counted(plan.outcome.reconciled.size(), "camera", "cameras"));
}

void print_changes(const Plan& plan) {
  print_triggers(plan);
  print_deleted_records(plan);
  print_documents(plan);
  const auto& cameras = plan.outcome.reconciled;
  if (!cameras.empty()) {
    std::cout << "reconcile " << on_cameras(plan, {cameras.begin(), cameras.end()}) << '\n';
  }
}

void print_for_people(const Plan& plan, const std::optional<Located_Fault>& place,
                      const Fault_List& warnings, const std::string& kept_in) {
  if (plan.outcome.status == Pass_Outcome::Status::rejected) {
    print_complaints(plan.outcome, place, warnings);
    std::cout << "The documents would be rejected.\n";
    return;
  }
  print_changes(plan);
  print_complaints(plan.outcome, place, warnings);
  if (plan.outcome.status == Pass_Outcome::Status::failed) {
    std::cout << "The pass would fail.\n";
  }
  print_closing_line(plan);
  if (!kept_in.empty()) {
    std::cout << fmt::format("Kept in {0}: apply --plan {0} does exactly this.\n",
                             printable(kept_in));
  }
}

}  // namespace

void print_plan(const Options& options, Plan plan, const std::optional<Located_Fault>& place,
                const Fault_List& warnings, const std::string& kept_in) {
  if (!plan.outcome.mass_deletions.empty()) {
    plan.outcome.remarks.push_back(
        fmt::format("apply would refuse this: it deletes {}. --allow-mass-deletion lets it pass.",
                    describe(plan.outcome.mass_deletions)));
  }
  if (options.json) {
    Json::Value answer = outcome_to_json(plan.outcome, place);
    answer["plan"] = to_json(plan);
    print_with_warnings(answer, warnings);
  } else {
    print_for_people(plan, place, warnings, kept_in);
  }
}

}  // namespace kuv::vemora::tools
