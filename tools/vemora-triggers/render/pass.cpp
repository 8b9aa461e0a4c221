// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/pass.h"

#include <fmt/format.h>

#include <iostream>
#include <string>

#include "tools/vemora-triggers/render/change_counts.h"
#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/mass_deletions.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

using Directive_Config_Processing::Error;
using embedded_server::Pass_Outcome;
using embedded_server::printable;

constexpr const char* rejected_for_warnings = "With --strict, warnings reject a document.";
constexpr const char* refused_as_too_much =
    "plan shows what would be deleted; if that is meant, --allow-mass-deletion lets it pass.";

Json::Value empty_object() {
  return Json::Value(Json::objectValue);
}

Json::Value to_json(std::uint64_t id) {
  return Json::UInt64(id);
}

Json::Value to_json(const std::string& text) {
  return text;
}

Json::Value to_json(const Object_Search_Item& item) {
  Json::Value object = empty_object();
  object["type"] = item.object_type;
  object["motionRequired"] = item.motion_required;
  return object;
}

Json::Value to_json(const Trigger_Config::Options& options) {
  Json::Value object = empty_object();
  object["anyTime"] = options.any_time;
  return object;
}

Json::Value to_json(const Error& error) {
  Json::Value object = empty_object();
  object["category"] = static_cast<int>(error.category);
  object["message"] = error.message;
  return object;
}

template <class Items>
Json::Value list_to_json(const Items& items) {
  Json::Value list(Json::arrayValue);
  for (const auto& item : items) {
    list.append(to_json(item));
  }
  return list;
}

template <class Item>
Json::Value to_json(const std::set<Item>& items) {
  return list_to_json(items);
}

template <class Value>
Json::Value to_json(const std::map<std::uint64_t, Value>& by_id) {
  Json::Value object = empty_object();
  for (const auto& [id, value] : by_id) {
    object[std::to_string(id)] = to_json(value);
  }
  return object;
}

Json::Value to_json(const std::optional<Notification_Properties::Milliseconds>& duration) {
  return duration ? Json::Value(Json::UInt(duration->count())) : Json::Value();
}

Json::Value to_json(const Notification_Properties& properties) {
  Json::Value object = empty_object();
  object["maxLatencyMs"] = to_json(properties.max_latency);
  object["digestCooldownMs"] = to_json(properties.digest_cooldown);
  object["ackTimeoutMs"] = to_json(properties.ack_timeout);
  object["nackDelayMs"] = to_json(properties.nack_delay);
  return object;
}

Json::Value to_json(const std::optional<Trigger_Config_State>& state) {
  if (!state) {
    return {};
  }
  Json::Value object = empty_object();
  object["appliedTriggers"] = to_json(state->applied_triggers);
  object["onvifTopicsByTrigger"] = to_json(state->onvif_topics_by_trigger);
  object["subscriptionsByTrigger"] = to_json(state->subscriptions_by_trigger);
  object["searchItemsByTrigger"] = to_json(state->search_items_by_trigger);
  object["properties"] = to_json(state->properties);
  return object;
}

/// What there is to say of an outcome beside its errors.
std::vector<std::string> remarks_on(const Pass_Outcome& outcome) {
  std::vector<std::string> remarks = outcome.remarks;
  if (outcome.rejected_for_warnings) {
    remarks.emplace_back(rejected_for_warnings);
  }
  if (outcome.status == Pass_Outcome::Status::refused && !outcome.mass_deletions.empty()) {
    remarks.emplace_back(refused_as_too_much);
  }
  return remarks;
}

/// Adds the members of a fault to an error, which keeps its message.
void add_location(Json::Value& error, const Located_Fault& fault) {
  const Json::Value members = to_json(fault);
  for (auto member = members.begin(); member != members.end(); ++member) {
    if (!error.isMember(member.name())) {
      error[member.name()] = *member;
    }
  }
}

void print_changes(const Pass_Outcome& outcome) {
  if (!outcome.changes_are_known) {
    std::cout << "What changed is not known.\n";
    return;
  }
  if (outcome.changes.empty()) {
    std::cout << "Nothing changed.\n";
    return;
  }
  print_changed(counts_of(outcome.changes));
}

const char* headline(Pass_Outcome::Status status, bool without_errors) {
  switch (status) {
    case Pass_Outcome::Status::done:
      return without_errors ? "Done." : "Done, with errors.";
    case Pass_Outcome::Status::rejected:
      return "Rejected; nothing changed.";
    case Pass_Outcome::Status::refused:
      return "Refused; nothing changed.";
    case Pass_Outcome::Status::failed:
      break;
  }
  return "Failed.";
}

/// Prints a message of the library; that of a rejected document with its location.
void print_error(const Error& error, std::optional<Located_Fault> rejection) {
  if (rejection) {
    rejection->fault.message = error.message;
    print_for_people(*rejection);
  } else {
    std::cout << in_red("error: ") << printable(error.message) << '\n';
  }
}

}  // namespace

Json::Value outcome_to_json(const Pass_Outcome& outcome,
                            const std::optional<Located_Fault>& rejection) {
  Json::Value answer = empty_object();
  answer["success"] = outcome.status == Pass_Outcome::Status::done;
  answer["errors"] = list_to_json(outcome.errors);
  if (rejection) {
    add_location(answer["errors"][0], *rejection);
  }
  answer["reconciled"] = to_json(outcome.reconciled);
  answer["state"] = to_json(outcome.state);
  answer["changes"] =
      outcome.changes_are_known ? counts_to_json(counts_of(outcome.changes)) : Json::Value();
  for (const std::string& remark : remarks_on(outcome)) {
    answer["remarks"].append(remark);
  }
  if (!outcome.mass_deletions.empty()) {
    answer["massDeletions"] = mass_deletions_to_json(outcome.mass_deletions);
  }
  return answer;
}

/// Their name is the last one of the answer, as names are ordered.
void print_with_warnings(const Json::Value& answer, const Fault_List& warnings) {
  std::string text = Json_Texts().of(answer);
  text.pop_back();
  std::cout << text << R"(,"warnings":)" << to_json_text(warnings) << "}\n";
}

void print_complaints(const Pass_Outcome& outcome, const std::optional<Located_Fault>& rejection,
                      const Fault_List& warnings) {
  std::vector<Error> errors = outcome.errors;
  std::optional<Error> refusal;  // the last of them
  if (outcome.status == Pass_Outcome::Status::refused) {
    refusal = errors.back();
    errors.pop_back();
  }
  for (const Error& error : errors) {
    print_error(error, rejection);
  }
  print_for_people(warnings);
  if (refusal) {
    print_error(*refusal, std::nullopt);  // behind the warnings, of which there may be many
  }
  for (const std::string& remark : remarks_on(outcome)) {
    std::cout << "note: " << printable(remark) << '\n';
  }
}

namespace {

void print_for_people(const Pass_Outcome& outcome, const std::optional<Located_Fault>& rejection,
                      const Fault_List& warnings) {
  print_complaints(outcome, rejection, warnings);
  if (outcome.status == Pass_Outcome::Status::done ||
      outcome.status == Pass_Outcome::Status::failed) {
    print_changes(outcome);
    std::cout << fmt::format("Cameras reconciled: {}\n", outcome.reconciled.size());
  }
  if (outcome.state) {
    std::cout << fmt::format("Active triggers: {}\n", outcome.state->applied_triggers.size());
  }
  std::cout << headline(outcome.status, outcome.errors.empty()) << '\n';
}

}  // namespace

Exit_Status exit_status_of(const Pass_Outcome& outcome) {
  switch (outcome.status) {
    case Pass_Outcome::Status::done:
      return outcome.errors.empty() ? exit_done : exit_trigger_errors;
    case Pass_Outcome::Status::rejected:
      return exit_rejected;
    case Pass_Outcome::Status::refused:
      return exit_refused;
    case Pass_Outcome::Status::failed:
      break;
  }
  return exit_failed;
}

void print_outcome(const Options& options, const Pass_Outcome& outcome,
                   const std::optional<Located_Fault>& rejection, const Fault_List& warnings) {
  if (options.json) {
    print_with_warnings(outcome_to_json(outcome, rejection), warnings);
  } else {
    print_for_people(outcome, rejection, warnings);
  }
}

void print_no_pass(const Options& options, const Located_Fault& fault) {
  Pass_Outcome outcome;
  outcome.status = Pass_Outcome::Status::rejected;
  outcome.errors = {{Error::Category::rejected_document, fault.fault.message}};
  print_outcome(options, outcome, fault);
}

void print_failed_pass(const Options& options, const std::string& message,
                       const std::string& stored) {
  if (!options.json) {
    return print_failure(options, message, stored);
  }
  Pass_Outcome outcome;
  outcome.errors = {{Error::Category::failed_processing, message}};
  Json::Value answer = outcome_to_json(outcome, std::nullopt);
  if (!stored.empty()) {
    answer["remarks"].append(stored);
    answer["changes"] = Json::Value();  // lost with the outcome
    answer["reconciled"] = Json::Value();
  }
  print_with_warnings(answer, {});
}

}  // namespace kuv::vemora::tools
