// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/mapping_faults.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace kuv::vemora::operations {
namespace {

using Ids = std::set<std::uint64_t>;

constexpr std::size_t most_named = 3;

/// "2", "1 and 2", "1, 2 and 3", "1, 2, 3 and 40 more".
std::string listed(const Ids& ids) {
  const std::size_t named = ids.size() > most_named ? most_named : ids.size() - 1;
  const std::string first = fmt::format(
      "{}",
      fmt::join(ids.begin(), std::next(ids.begin(), static_cast<std::ptrdiff_t>(named)), ", "));
  const std::string last = ids.size() > most_named ? fmt::format("{} more", ids.size() - named)
                                                   : std::to_string(*ids.rbegin());
  return named == 0 ? last : first + " and " + last;
}

Ids ids_in(const Json::Value& array) {
  Ids ids;
  for (const Json::Value& id : array) {
    ids.insert(id.asUInt64());
  }
  return ids;
}

/// The triggers by their ids.
class Triggers_By_Id {
 public:
  explicit Triggers_By_Id(const std::vector<Judged_Trigger>& triggers) {
    for (const Judged_Trigger& trigger : triggers) {
      const Judged_Trigger*& known = triggers_[*trigger.subject.id];
      if (known == nullptr || trigger.config != nullptr) {  // of twins, the one that is kept
        known = &trigger;
      }
    }
  }

  /// Null when there is none.
  const Judged_Trigger* find(std::uint64_t id) const {
    const auto found = triggers_.find(id);
    return found == triggers_.end() ? nullptr : found->second;
  }

 private:
  std::map<std::uint64_t, const Judged_Trigger*> triggers_;
};

bool has_list(const Judged_Trigger& trigger) {
  return !trigger.element["scheduleIds"].isNull();
}

class Mapping_Judge {
 public:
  Mapping_Judge(Schedule_Look_Up& schedules, const std::vector<Judged_Trigger>& triggers,
                Found_Warnings& found)
      : schedules_(schedules), triggers_(triggers), found_(found) {}

  void judge(const Json::Value& association, std::size_t index) {
    const bool makes_inactive = warn_of_schedules(association, index);
    const Ids offered = ids_in(association["scheduleIds"]);
    for (const Json::Value& id : association["triggerIds"]) {
      const Subject subject{index, id.asUInt64()};
      const Judged_Trigger* const trigger = triggers_.find(*subject.id);
      if (trigger == nullptr) {
        found_.in_mapping(
            "mapping-of-unknown-trigger", id, subject,
            fmt::format("The configuration has no trigger {}; take it out of the list.",
                        *subject.id));
      } else if (is_judged(*trigger) && !offered.empty() &&
                 !(makes_inactive && has_list(*trigger))) {
        warn_of_no_effect(*trigger, offered, id, subject);
      }
    }
  }

 private:
  static bool is_judged(const Judged_Trigger& trigger) {
    return trigger.is_ours && trigger.config != nullptr;
  }

  /// Answers whether there is one that cannot be used.
  bool warn_of_schedules(const Json::Value& association, std::size_t index) {
    Ids inactive;
    for (const Json::Value& id : association["triggerIds"]) {
      const Judged_Trigger* const trigger = triggers_.find(id.asUInt64());
      if (trigger != nullptr && is_judged(*trigger) && has_list(*trigger)) {
        inactive.insert(id.asUInt64());
      }
    }
    bool is_there = false;
    for (const Json::Value& id : association["scheduleIds"]) {
      const Schedule_Fault* const fault = schedules_.fault_of(id.asUInt64());
      is_there = is_there || fault != nullptr;
      if (fault != nullptr && !inactive.empty()) {
        warn_of_schedule(*fault, id, index, inactive);
      }
    }
    return is_there;
  }

  void warn_of_schedule(const Schedule_Fault& fault, const Json::Value& id, std::size_t index,
                        const Ids& inactive) {
    const bool is_one = inactive.size() == 1;
    found_.in_mapping(
        fault.code, id, {index, is_one ? std::make_optional(*inactive.begin()) : std::nullopt},
        fmt::format("{}, so {} {} {} inactive; {}", fault.text, is_one ? "trigger" : "the triggers",
                    listed(inactive), is_one ? "is" : "are", fault.advice));
  }

  void warn_of_no_effect(const Judged_Trigger& trigger, const Ids& offered, const Json::Value& id,
                         Subject subject) {
    if (!has_list(trigger)) {
      found_.in_mapping("mapping-without-effect", id, subject,
                        fmt::format("A mapping adds no schedule, and trigger {} has no "
                                    "\"scheduleIds\" of its own; list its schedules there.",
                                    *subject.id));
      return;
    }
    const Ids& own = own_ids_of(trigger);
    Ids lacking;
    std::set_difference(offered.begin(), offered.end(), own.begin(), own.end(),
                        std::inserter(lacking, lacking.end()));
    if (!lacking.empty()) {
      found_.in_mapping("mapping-without-effect", id, subject,
                        fmt::format("A mapping adds no schedule, and the \"scheduleIds\" of "
                                    "trigger {} lack {}; list it there if it is meant.",
                                    *subject.id, listed(lacking)));
    }
  }

  /// Made once, however many associations name the trigger.
  const Ids& own_ids_of(const Judged_Trigger& trigger) {
    const auto [known, is_new] = own_ids_.try_emplace(&trigger);
    if (is_new) {
      known->second = ids_in(trigger.element["scheduleIds"]);
    }
    return known->second;
  }

  Schedule_Look_Up& schedules_;
  Triggers_By_Id triggers_;
  Found_Warnings& found_;
  std::map<const Judged_Trigger*, Ids> own_ids_;
};

}  // namespace

void warn_of_mapping(const embedded_server::Read_Documents& documents, Schedule_Look_Up& schedules,
                     const std::vector<Judged_Trigger>& triggers, Found_Warnings& found) {
  Mapping_Judge judge(schedules, triggers, found);
  std::size_t index = 0;
  for (const Json::Value& association : documents.mapping.value()["triggerMapping"]) {
    judge.judge(association, index++);
  }
}

}  // namespace kuv::vemora::operations
