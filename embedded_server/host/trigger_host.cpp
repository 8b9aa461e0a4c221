#include "vemora/embedded_server/host/trigger_host.h"

#include <fmt/format.h>

#include <array>
#include <functional>
#include <utility>

#include "vemora/embedded_server/host/fault_locator.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/embedded_server/persistent/site_reader.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora::embedded_server {
namespace {

using Directive_Config_Processing::Error;
using Status = Pass_Outcome::Status;

std::optional<Json::Value> object_in(const std::string& text) {
  try {
    Json::Value value = Json_Document(text).value();
    return value.isObject() ? std::make_optional(std::move(value)) : std::nullopt;
  } catch (const Document_Error&) {
    return std::nullopt;
  }
}

/// A stored document was accepted before, so it can be read unless it was damaged since; before the
/// first one it is empty.
Json::Value stored_value(const std::optional<std::string>& text, const char* name) {
  if (!text) {
    return Json::Value(Json::objectValue);
  }
  if (auto value = object_in(*text)) {
    return *std::move(value);
  }
  throw Database_Error(
      fmt::format("the stored {} is damaged: it is no JSON object; apply one anew", name));
}

Json::Value stored_config(const Pass_Scope& pass) {
  return stored_value(pass.documents().config, "configuration");
}

Json::Value value_of(const Json_Document* mapping, const Pass_Scope& pass) {
  return mapping != nullptr ? mapping->value() : stored_value(pass.documents().mapping, "mapping");
}

/// The documents of a manager that was just made have what a missing key stands for.
Json::Value with_default(Json::Value document, const char* key) {
  if (document.isObject() && document[key].isNull()) {
    document[key] = Json::Value(Json::arrayValue);
  }
  return document;
}

/// Where a document stands that parts of were rejected: the stored one, when it is null, nowhere.
Check_Fault describe(const char* name, const Json_Document* document, const Rejected_Part& found) {
  Check_Fault fault{name, {found.message, {}}, found.index, found.id};
  if (found.part != nullptr && document != nullptr) {
    fault.fault.location = document->locate(*found.part);
  }
  return fault;
}

/// Gathers rejections in the order of a pass.
class Rejections {
 public:
  /// Behind the first one, only triggers and associations: of the rest nobody knows what it would
  /// be without the first.
  void add(const char* name, const Json_Document* document,
           const std::vector<Rejected_Part>& rejections) {
    const bool first = found_.empty();
    for (const Rejected_Part& rejection : rejections) {
      if (first || rejection.index) {
        found_.push_back(describe(name, document, rejection));
      }
    }
  }

  std::vector<Check_Fault> take() { return std::move(found_); }

 private:
  std::vector<Check_Fault> found_;
};

bool is_corrupt(const metadata_event_subscription& record) {
  return record.camera && !record.onvif_topic;
}

Status status_of(const Directive_Config_Processing::Result& result) {
  if (result.success) {
    return Status::done;
  }
  const bool rejected = !result.errors.empty() &&
                        result.errors.front().category == Error::Category::rejected_document;
  return rejected ? Status::rejected : Status::failed;
}

}  // namespace

Trigger_Host::Trigger_Host(std::shared_ptr<Database> database, std::uint64_t server_id,
                           Host_Services services)
    : logger_("Trigger_Host"),
      database_(std::move(database)),
      server_id_(server_id),
      repository_(make_repository(database_)),
      capture_manager_(
          std::make_shared<Recording_Capture_Manager>(std::move(services.capture_manager))),
      pusher_(std::make_shared<Snapshot_Pusher>(std::move(services.pusher))),
      resolver_(std::make_shared<Inventory_Meta_Type_Resolver>()) {}

Pass_Outcome Trigger_Host::apply(const Json_Document& config, const Json_Document* mapping) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Pass_Scope pass(database_, server_id_);
  begin();
  const Json::Value schedules = value_of(mapping, pass);
  Pass_Outcome outcome;
  Directive_Config_Processing::Result result = update_config(pass, config, schedules);
  outcome.status = status_of(result);
  outcome.errors = std::move(result.errors);
  if (outcome.status == Status::rejected && !pass.fault()) {
    const auto rejections = find_rejections(config, mapping, schedules);
    outcome.rejection = rejections.empty() ? std::nullopt : std::make_optional(rejections.front());
  }
  finish(pass,
         {config.text(), mapping != nullptr ? std::make_optional(mapping->text()) : std::nullopt},
         outcome);
  if (outcome.status != Status::rejected) {
    outcome.rejection.reset();  // the database failed in looking for it
  }
  return outcome;
}

Directive_Config_Processing::Result Trigger_Host::update_config(Pass_Scope& pass,
                                                                const Json_Document& config,
                                                                const Json::Value& mapping) {
  if (mapping.isObject()) {
    // The configuration before is about to be replaced: nothing is lost where it was damaged.
    const auto before = object_in(pass.documents().config.value_or("{}"));
    return make_manager(before.value_or(Json::objectValue), mapping)->update_config(config.value());
  }
  // No manager can be made with such a mapping, so its parser says what a pass would have said.
  const auto rejections = find_rejections(config, nullptr, mapping);
  return {false,
          {{Error::Category::rejected_document,
            "Failed to parse trigger config: " + rejections.at(0).fault.message}}};
}

Pass_Outcome Trigger_Host::refresh() {
  const std::lock_guard<std::mutex> lock(mutex_);
  Pass_Scope pass(database_, server_id_);
  begin();
  const auto manager = make_manager(stored_config(pass), value_of(nullptr, pass));
  Pass_Outcome outcome;
  Trigger_Config_State state;
  outcome.status = manager->refresh_triggers(state) ? Status::done : Status::failed;
  outcome.errors = std::move(state.errors);
  finish(pass, {}, outcome);
  return outcome;
}

std::vector<Check_Fault> Trigger_Host::check(const Json_Document& config,
                                             const Json_Document* mapping) {
  Pass_Scope pass(database_, server_id_, Pass_Scope::Mode::read_only);
  auto found = find_rejections(config, mapping, value_of(mapping, pass));
  if (pass.fault()) {
    throw Database_Error(*pass.fault());
  }
  return found;
}

/// `schedules` is the mapping, or the stored one.
std::vector<Check_Fault> Trigger_Host::find_rejections(const Json_Document& config,
                                                       const Json_Document* mapping,
                                                       const Json::Value& schedules) {
  Vemora_Trigger_Parser parser(repository_, server_id_);
  Rejections found;
  found.add("config", &config, rejections_of_properties(parser, config.value()));
  const Json::Value completed = with_default(schedules, "triggerMapping");
  const auto in_mapping = rejections_of_mapping(parser, completed);
  found.add("mapping", mapping, in_mapping);
  const Trigger_Mapping parsed =
      in_mapping.empty() ? parser.parse_trigger_mapping(completed) : Trigger_Mapping();
  found.add("config", &config, rejections_of_triggers(parser, config.value(), parsed));
  return found.take();
}

std::unique_ptr<Vemora_Trigger_Manager> Trigger_Host::make_manager(const Json::Value& config,
                                                                   const Json::Value& mapping) {
  return std::make_unique<Vemora_Trigger_Manager>(
      config, mapping, repository_, capture_manager_,
      std::make_unique<Vemora_Trigger_Parser>(repository_, server_id_), pusher_, resolver_);
}

void Trigger_Host::begin() {
  capture_manager_->forget();
  pusher_->forget();
  resolver_->learn(load_object_types(database_));
}

void Trigger_Host::finish(Pass_Scope& pass, const Documents& accepted, Pass_Outcome& outcome) {
  end(pass, outcome);
  outcome.changes = pass.changes();
  outcome.state = pusher_->state();
  if (outcome.status != Status::rejected && !pass.fault()) {
    try {
      reconcile_leftovers(pass);
      outcome.reconciled = capture_manager_->reconciled();
      pass.store(outcome.status == Status::done ? accepted : Documents(), outcome.reconciled);
    } catch (const Database_Error& error) {
      outcome.status = Status::failed;
      outcome.errors.push_back({Error::Category::failed_processing, error.what()});
      outcome.remarks.emplace_back(
          "The records of the pass are committed. Repeat the command, so that its documents are "
          "stored too.");
      return;
    }
    if (outcome.status == Status::failed) {
      outcome.remarks.emplace_back(
          "What the pass had written is committed; the documents stored are still the old ones.");
      name_corrupt_records(outcome);
    }
  }
}

void Trigger_Host::end(Pass_Scope& pass, Pass_Outcome& outcome) {
  try {
    pass.end();
    if (pass.fault()) {
      if (outcome.status == Status::done) {  // or the library has said so
        outcome.errors.push_back({Error::Category::failed_processing, *pass.fault()});
      }
      outcome.status = Status::failed;
      outcome.remarks.emplace_back("What the pass had written before the fault is committed.");
    }
  } catch (const Database_Error& error) {
    if (outcome.status != Status::done) {
      outcome.remarks.emplace_back(error.what());  // the library has said that it failed
    } else {
      outcome.errors.push_back({Error::Category::failed_processing, error.what()});
    }
    outcome.status = Status::failed;
  }
}

/// Cameras that changed and were not reconciled since, because a pass was cut short before it, or
/// it failed for them: those of earlier passes, and of this one where it did not come to ask for
/// them.
void Trigger_Host::reconcile_leftovers(Pass_Scope& pass) {
  for (const std::uint64_t camera_id : pass.pending_cameras()) {
    if (capture_manager_->asked_for().count(camera_id) != 0) {
      continue;
    }
    try {
      capture_manager_->reconcile_metadata_stream(camera_id);
    } catch (const std::exception& error) {
      logger_.log(kuv::logging::severity_level::error,
                  "Failed to reconcile metadata stream for camera {}, tried again after the next "
                  "pass: {}",
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
