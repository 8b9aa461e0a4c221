// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/host/trigger_host.h"

#include <fmt/format.h>

#include <array>
#include <functional>
#include <limits>
#include <utility>

#include "vemora/embedded_server/host/located_faults.h"
#include "vemora/embedded_server/host/noting_parser.h"
#include "vemora/embedded_server/host/stored_document.h"
#include "vemora/embedded_server/logging/unstored_lines.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/site_reader.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora::embedded_server {
namespace {

using Directive_Config_Processing::Error;
using Status = Pass_Outcome::Status;

/// The object types may be older than the limits, or written by another program.
void require_within_limits(const Object_Types& types) {
  const Excessive_Types excessive = find_excessive_types(types);
  if (excessive.too_many_general) {
    throw Database_Error(
        fmt::format("the site has more than {} general object types", most_general_object_types));
  }
  if (!excessive.names.empty()) {
    throw Database_Error(fmt::format(
        "object type \"{}\" of the site stands for more than {} types; change the inventory",
        excessive.names.front(), most_types_of_a_general_one));
  }
}

/// The document as a new manager would complete it, if its list is missing: with an empty one.
std::optional<Json::Value> completed(const Json::Value& document, const char* key) {
  if (!document.isObject() || !document[key].isNull()) {
    return std::nullopt;
  }
  std::optional<Json::Value> copy(document);
  (*copy)[key] = Json::Value(Json::arrayValue);
  return copy;
}

bool is_corrupt(const metadata_event_subscription& record) {
  return record.camera && !record.onvif_topic;
}

/// Records in its destructor what is stored of a pass, also if something was thrown.
class Kept_Note {
 public:
  Kept_Note(std::atomic<Kept>& note, const Pass_Scope& pass) noexcept : note_(note), pass_(pass) {}
  ~Kept_Note() { note_ = kept(); }
  Kept_Note(const Kept_Note&) = delete;
  Kept_Note& operator=(const Kept_Note&) = delete;

  void note_end(Status status) noexcept { status_ = status; }

 private:
  Kept kept() const noexcept {
    if (status_ == Status::rejected) {
      return Kept::nothing;
    }
    // The documents of a failed pass are not stored.
    const Kept kept = pass_.kept();
    return status_ == Status::failed && kept == Kept::everything ? Kept::records : kept;
  }

  std::atomic<Kept>& note_;
  const Pass_Scope& pass_;
  std::optional<Status> status_;
};

Status status_of(const Directive_Config_Processing::Result& result) {
  if (result.success) {
    return Status::done;
  }
  const bool rejected = !result.errors.empty() &&
                        result.errors.front().category == Error::Category::rejected_document;
  return rejected ? Status::rejected : Status::failed;
}

void tell_rejection(std::vector<Check_Fault>& faults, Pass_Outcome& outcome) {
  if (outcome.status == Status::rejected && !faults.empty()) {
    outcome.rejection = std::move(faults.front());
  } else if (outcome.status == Status::rejected && !outcome.rejected_for_warnings) {
    outcome.status = Status::failed;  // the reason is not in the documents
  }
}

Pass_Ending ending_of(const Pass_Outcome& outcome) {
  Pass_Ending ending;
  ending.success = outcome.status == Status::done;
  ending.errors.reserve(outcome.errors.size());
  for (const Error& error : outcome.errors) {
    ending.errors.push_back(error.message);
  }
  return ending;
}

/// Thrown to end a pass. Not derived from std::exception, because the manager would catch that.
struct Rejected_For_Warnings {};

}  // namespace

/// The documents of a pass.
struct Trigger_Host::Given_Documents {
  Given_Documents(const Json_Document& given_config, const Json_Document* given_mapping,
                  const Pass_Scope& pass)
      : config(given_config), new_mapping(given_mapping) {
    if (new_mapping == nullptr) {
      stored_mapping =
          std::make_shared<Json_Document>(read_stored_document(pass.mapping(), "mapping"));
      completed_mapping = completed(stored_mapping->value(), "triggerMapping");
    }
  }

  /// The stored documents.
  explicit Given_Documents(const Pass_Scope& pass)
      : Given_Documents(std::make_shared<Json_Document>(
                            read_stored_document(pass.documents().config, "configuration")),
                        pass) {}

  const Json_Document& mapping() const {
    return new_mapping != nullptr ? *new_mapping : *stored_mapping;
  }

  // What is to be parsed. In a new document nothing may be missing.
  const Json::Value& parsed_config() const {
    return completed_config ? *completed_config : config.value();
  }
  const Json::Value& parsed_mapping() const {
    return completed_mapping ? *completed_mapping : mapping().value();
  }

  std::shared_ptr<const Json_Document> stored_config;  ///< null if a new one is given
  std::shared_ptr<const Json_Document> stored_mapping;
  const Json_Document& config;
  const Json_Document* new_mapping;
  std::optional<Json::Value> completed_config;  ///< if something is missing in the stored one
  std::optional<Json::Value> completed_mapping;

 private:
  Given_Documents(std::shared_ptr<const Json_Document> stored, const Pass_Scope& pass)
      : Given_Documents(*stored, nullptr, pass) {
    stored_config = std::move(stored);
    completed_config = completed(stored_config->value(), "triggers");
  }
};

Trigger_Host::Trigger_Host(std::shared_ptr<Database> database, std::uint64_t server_id,
                           Host_Services services)
    : logger_("Trigger_Host"),
      database_(std::move(database)),
      server_id_(server_id),
      repository_(make_repository(database_)),
      capture_manager_(
          std::make_shared<Recording_Capture_Manager>(std::move(services.capture_manager))),
      pusher_(std::make_shared<Snapshot_Pusher>(std::move(services.pusher))),
      resolver_(std::make_shared<Inventory_Meta_Type_Resolver>()),
      judge_(std::move(services.judge)),
      warnings_reject_(services.warnings_reject),
      refuses_mass_deletion_(services.refuses_mass_deletion),
      origin_(std::move(services.origin)) {}

Pass_Origin Trigger_Host::origin_of(const char* command) const {
  Pass_Origin origin = origin_;
  if (origin.command.empty()) {
    origin.command = command;
  }
  return origin;
}

Pass_Outcome Trigger_Host::apply(const Json_Document& config, const Json_Document* mapping,
                                 const Object_To_Pass& object) {
  const std::lock_guard<std::mutex> lock(mutex_);
  kept_ = Kept::nothing;
  Pass_Scope pass(database_, server_id_);
  pass.record_as(origin_of("apply"));
  Kept_Note kept(kept_, pass);
  begin();
  const Given_Documents documents(config, mapping, pass);
  Pass_Outcome outcome;
  if (object) {
    if (std::optional<std::string> objection = object()) {
      outcome.status = Status::refused;
      outcome.errors.push_back({Error::Category::failed_processing, *std::move(objection)});
      return outcome;
    }
  }
  watch_deletions(pass, outcome);
  std::vector<Check_Fault> faults;
  update_config(pass, documents, faults, outcome);
  finish(pass,
         {config.text(), mapping != nullptr ? std::make_optional(mapping->text()) : std::nullopt},
         outcome);
  tell_rejection(faults, outcome);
  kept.note_end(outcome.status);
  return outcome;
}

Pass_Outcome Trigger_Host::plan(const Json_Document& config, const Json_Document* mapping,
                                const Plan_Observer& observer) const {
  // A host of its own, which has nobody to tell and waits for no pass of this one.
  Trigger_Host scratch(database_, server_id_,
                       {nullptr, nullptr, judge_, warnings_reject_, refuses_mass_deletion_});
  return scratch.run_plan(config, mapping, observer);
}

Pass_Outcome Trigger_Host::run_plan(const Json_Document& config, const Json_Document* mapping,
                                    const Plan_Observer& observer) {
  const kuv::logging::Unstored_Lines lines;
  Pass_Scope pass(database_, server_id_, Pass_Scope::Mode::read_only);
  begin();
  const Given_Documents documents(config, mapping, pass);
  Pass_Outcome outcome;
  observer.before();
  pass.forget_look();
  watch_deletions(pass, outcome);
  std::vector<Check_Fault> faults;
  update_config(pass, documents, faults, outcome);
  finish_plan(pass, outcome);
  tell_rejection(faults, outcome);
  if (outcome.status != Status::rejected) {
    observer.after(outcome);
  }
  return outcome;
}

void Trigger_Host::finish_plan(Pass_Scope& pass, Pass_Outcome& outcome) {
  if (!pass.fault()) {
    pass.end();
  }
  if (pass.fault()) {
    throw Database_Error(*pass.fault());
  }
  if (outcome.status == Status::rejected) {
    return;
  }
  outcome.changes = pass.changes();
  outcome.state = pusher_->state();
  reconcile_leftovers(pass);
  outcome.reconciled = capture_manager_->reconciled();
  if (outcome.status == Status::failed) {
    outcome.remarks.emplace_back(
        "What the pass had written until then would be committed; the documents stored would still "
        "be the old ones.");
    name_corrupt_records(outcome);
  }
}

/// Where too much would be deleted, the pass is given up and the services are told nothing more.
void Trigger_Host::watch_deletions(Pass_Scope& pass, Pass_Outcome& outcome) {
  if (!refuses_mass_deletion_) {
    return;
  }
  pass.ask_before_commit([this, &outcome](const Deletions& deletions) {
    outcome.mass_deletions = find_mass_deletions(deletions);
    if (!outcome.mass_deletions.empty()) {
      capture_manager_->hold_back();
      pusher_->hold_back();
    }
    return outcome.mass_deletions.empty();
  });
}

void Trigger_Host::update_config(Pass_Scope& pass, const Given_Documents& documents,
                                 std::vector<Check_Fault>& faults, Pass_Outcome& outcome) {
  // The parser has the documents; the manager would only copy them.
  const Json::Value nothing(Json::objectValue);
  const auto manager =
      make_manager(nothing, nothing, make_parser(pass, documents, faults, outcome));
  try {
    Directive_Config_Processing::Result result = manager->update_config(nothing);
    outcome.status = status_of(result);
    outcome.errors = std::move(result.errors);
  } catch (const Rejected_For_Warnings&) {
    outcome.status = Status::rejected;
    outcome.rejected_for_warnings = true;
  }
}

Pass_Outcome Trigger_Host::refresh() {
  const std::lock_guard<std::mutex> lock(mutex_);
  kept_ = Kept::nothing;
  Pass_Scope pass(database_, server_id_);
  pass.record_as(origin_of("refresh"));
  Kept_Note kept(kept_, pass);
  begin();
  Pass_Outcome outcome;
  watch_deletions(pass, outcome);
  refresh(pass, Given_Documents(pass), outcome);
  finish(pass, {}, outcome);
  kept.note_end(outcome.status);
  return outcome;
}

void Trigger_Host::refresh(Pass_Scope& pass, const Given_Documents& documents,
                           Pass_Outcome& outcome) {
  std::vector<Check_Fault> ignored;
  // The parser has the documents; the manager would only copy them.
  const Json::Value nothing(Json::objectValue);
  const auto manager =
      make_manager(nothing, nothing, make_parser(pass, documents, ignored, outcome));
  try {
    Trigger_Config_State state;
    outcome.status = manager->refresh_triggers(state) ? Status::done : Status::failed;
    outcome.errors = std::move(state.errors);
  } catch (const Rejected_For_Warnings&) {
    outcome.status = Status::rejected;
    outcome.rejected_for_warnings = true;
  }
}

std::vector<Check_Fault> Trigger_Host::check(const Json_Document& config,
                                             const Json_Document* mapping) {
  std::vector<Document_Warning> ignored;
  return check(config, mapping, ignored);
}

std::vector<Check_Fault> Trigger_Host::check(const Json_Document& config,
                                             const Json_Document* mapping,
                                             std::vector<Document_Warning>& warnings) {
  Pass_Scope pass(database_, server_id_, Pass_Scope::Mode::read_only);
  const Given_Documents documents(config, mapping, pass);
  std::vector<Check_Fault> found;
  Located_Faults in_config("config", &config, Located_Faults::Wanted::all, found);
  Located_Faults in_mapping("mapping", mapping, Located_Faults::Wanted::all, found);
  Vemora_Trigger_Parser parser(repository_, server_id_);
  parser.parse_config_properties(config.value(), in_config);
  const Trigger_Mapping schedules =
      parser.parse_trigger_mapping(documents.parsed_mapping(), in_mapping);
  if (config.value().isObject()) {  // if not, this was reported with the properties
    const std::vector<Trigger_Config> triggers =
        parser.parse_trigger_configs(config.value(), schedules, in_config);
    warnings = judge(documents, schedules, triggers, found.empty(), false);
  }
  if (pass.fault()) {
    throw Database_Error(*pass.fault());
  }
  return found;
}

/// What it is given outlives it.
std::unique_ptr<Trigger_Parser> Trigger_Host::make_parser(const Pass_Scope& pass,
                                                          const Given_Documents& documents,
                                                          std::vector<Check_Fault>& faults,
                                                          Pass_Outcome& outcome) {
  const auto judge_parsed = [this, &pass, &documents, &outcome](
                                const Trigger_Mapping& schedules,
                                const std::vector<Trigger_Config>& triggers) {
    try {
      outcome.warnings = judge(documents, schedules, triggers, true, true);
    } catch (const Database_Error&) {
      if (!pass.fault()) {
        throw;
      }
      return;  // the pass fails with it at its next call, and it is no fault of the documents
    }
    if (warnings_reject_ && !outcome.warnings.empty()) {
      throw Rejected_For_Warnings();
    }
  };
  return std::make_unique<Noting_Parser>(
      repository_, server_id_,
      Parsed_Documents{documents.parsed_config(), documents.parsed_mapping()},
      Located_Faults("config", &documents.config, Located_Faults::Wanted::first, faults),
      Located_Faults("mapping", documents.new_mapping, Located_Faults::Wanted::first, faults),
      judge_parsed);
}

std::vector<Document_Warning> Trigger_Host::judge(const Given_Documents& documents,
                                                  const Trigger_Mapping& schedules,
                                                  const std::vector<Trigger_Config>& triggers,
                                                  bool are_valid, bool in_pass) {
  if (!judge_) {
    return {};
  }
  std::vector<Document_Warning> warnings =
      judge_({documents.config, documents.mapping(), schedules, triggers, are_valid, in_pass});
  for (Document_Warning& warning : warnings) {
    warning.stored =
        warning.fault.document == "config" ? documents.stored_config : documents.stored_mapping;
  }
  return warnings;
}

std::unique_ptr<Vemora_Trigger_Manager> Trigger_Host::make_manager(
    const Json::Value& config, const Json::Value& mapping, std::unique_ptr<Trigger_Parser> parser) {
  return std::make_unique<Vemora_Trigger_Manager>(config, mapping, repository_, capture_manager_,
                                                  std::move(parser), pusher_, resolver_);
}

void Trigger_Host::begin() {
  capture_manager_->forget();
  pusher_->forget();
  Object_Types types = load_object_types(database_);
  require_within_limits(types);
  resolver_->learn(std::move(types));
}

void Trigger_Host::finish(Pass_Scope& pass, const Documents& accepted, Pass_Outcome& outcome) {
  end(pass, outcome);
  if (pass.is_given_up()) {
    tell_refusal(outcome);
    return;
  }
  outcome.changes = pass.changes();
  outcome.state = pusher_->state();
  outcome.reconciled = capture_manager_->reconciled();  // even if storing fails
  if (outcome.status != Status::rejected && !pass.fault()) {
    try {
      reconcile_leftovers(pass);
      outcome.reconciled = capture_manager_->reconciled();
      pass.store(outcome.status == Status::done ? accepted : Documents(), outcome.reconciled,
                 ending_of(outcome));
    } catch (const std::exception& error) {
      outcome.status = Status::failed;
      outcome.errors.push_back({Error::Category::failed_processing, error.what()});
      outcome.remarks.emplace_back(
          pass.kept() == Kept::everything
              ? "The pass is done, and all of its changes are stored."
              : "The records of the pass are committed. Repeat the command to store its documents "
                "too.");
      return;
    }
    if (outcome.status == Status::failed) {
      outcome.remarks.emplace_back(
          "What the pass wrote is committed; the stored documents are still the old ones.");
      name_corrupt_records(outcome);
    }
  }
}

/// The errors of single triggers stay: they may be why so much would be deleted.
void Trigger_Host::tell_refusal(Pass_Outcome& outcome) {
  outcome.status = Status::refused;
  outcome.remarks.clear();
  outcome.changes_are_known = true;  // there are none
  outcome.errors.push_back(
      {Error::Category::failed_processing,
       fmt::format("This pass would delete {}.", describe(outcome.mass_deletions))});
}

void Trigger_Host::end(Pass_Scope& pass, Pass_Outcome& outcome) {
  try {
    pass.end();
    if (pass.fault()) {
      if (outcome.status == Status::done) {  // otherwise the library reported it
        outcome.errors.push_back({Error::Category::failed_processing, *pass.fault()});
      }
      outcome.status = Status::failed;
      outcome.remarks.emplace_back("What the pass wrote before the failure is committed.");
    }
  } catch (const Database_Error& error) {
    if (outcome.status != Status::done) {
      outcome.remarks.emplace_back(error.what());  // the library reported the failure
    } else {
      outcome.errors.push_back({Error::Category::failed_processing, error.what()});
    }
    outcome.status = Status::failed;
    outcome.changes_are_known = pass.changes_are_known();
  }
}

/// Reconciles the cameras that changed and were not reconciled yet, because a pass was interrupted
/// or reconciling failed: those of earlier passes, and those of this one that it did not reach.
void Trigger_Host::reconcile_leftovers(Pass_Scope& pass) {
  for (const std::uint64_t camera_id : pass.pending_cameras()) {
    if (capture_manager_->asked_for().count(camera_id) != 0) {
      continue;
    }
    try {
      capture_manager_->reconcile_metadata_stream(camera_id);
    } catch (const std::exception& error) {
      logger_.log(
          kuv::logging::severity_level::error,
          "Failed to reconcile metadata stream for camera {}; the next pass tries again: {}",
          camera_id, error.what());
    }
  }
}

void Trigger_Host::name_corrupt_records(Pass_Outcome& outcome) {
  for (const auto& record : read_subscriptions(database_)) {
    if (is_corrupt(*record)) {
      outcome.remarks.push_back(
          fmt::format("Corrupt record: subscription {} has a camera ({}) and no ONVIF topic.",
                      record->id, record->camera_id()));
    }
  }
}

}  // namespace kuv::vemora::embedded_server
