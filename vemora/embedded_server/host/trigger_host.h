// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "vemora/embedded_server/documents/check_fault.h"
#include "vemora/embedded_server/documents/document_warning.h"
#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/embedded_server/host/document_judge.h"
#include "vemora/embedded_server/host/mass_deletion.h"
#include "vemora/embedded_server/host/services.h"
#include "vemora/embedded_server/persistent/changes.h"
#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/history_entry.h"
#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/platform/directive_config_processing.h"
#include "vemora/platform/export.h"
#include "vemora/platform/logging/source.h"

namespace kuv::vemora {
class Trigger_Parser;
class Vemora_Trigger_Manager;
}  // namespace kuv::vemora

namespace kuv::vemora::embedded_server {

/// The outcome of one pass.
struct Pass_Outcome {
  /// How a pass ended.
  enum class Status {
    done,      ///< single triggers may have errors
    rejected,  ///< a document was rejected; nothing changed
    failed,    ///< the pass or the database failed
    refused,   ///< the pass was given up on purpose; nothing changed
  };

  Status status = Status::failed;
  std::vector<Directive_Config_Processing::Error> errors;  ///< the library's own, in order
  std::vector<std::string> remarks;                        ///< further information about a failure
  std::set<std::uint64_t> reconciled;                      ///< cameras
  std::optional<Trigger_Config_State> state;               ///< what the pusher received
  Changes changes;
  std::vector<Document_Warning> warnings;
  std::optional<Check_Fault>
      rejection;  ///< the reason if a document was rejected, as check() reports it
  bool rejected_for_warnings = false;  ///< and for nothing else
  bool changes_are_known = true;       ///< false if it is not known what became of a commit
  /// The deletions for which the pass was refused; of a plan, for which it would be.
  std::vector<Mass_Deletion> mass_deletions;
};

/// Reads the site within the transaction of a plan, through what joins a pass that is open on its
/// thread: the repositories and site_reader.h.
struct Plan_Observer {
  std::function<void()> before;  ///< called when the pass has begun and has changed nothing
  /// Called when the pass is done; what is read then is what the pass left. Not called if a
  /// document was rejected.
  std::function<void(const Pass_Outcome&)> after;
};

/// Called in the transaction of a pass before anything is changed. Returns the reason if the pass
/// is to be refused.
using Object_To_Pass = std::function<std::optional<std::string>()>;

/// The services that passes call, and the function that judges documents. Each may be empty, and
/// nothing is done then.
struct Host_Services {
  std::shared_ptr<capture::Manager> capture_manager;
  std::shared_ptr<Trigger_Notification_Pusher> pusher;
  Judge_Documents judge = {};
  bool warnings_reject = false;  ///< a document with a warning is rejected, and nothing changes
  bool refuses_mass_deletion = false;  ///< see is_mass_deletion()
  Pass_Origin origin = {};  ///< for the history; without a command, passes are called by their kind
};

/// Runs passes on one database as a server would. It can be used from any thread; passes wait for
/// each other. Throws what the database throws (Database_Error) before a pass begins, and
/// exceptions of the services that are not derived from std::exception.
class VEMORA_API Trigger_Host {
 public:
  /// A host that runs its passes as the server `server_id`. Runs none yet.
  Trigger_Host(std::shared_ptr<Database> database, std::uint64_t server_id,
               Host_Services services = {});

  /// Runs a pass with a new configuration and, unless it is null, a new mapping, and stores them if
  /// the pass succeeds. A new mapping must have its list; only a stored one may lack it. The pass
  /// is refused if `object` objects to it.
  Pass_Outcome apply(const Json_Document& config, const Json_Document* mapping,
                     const Object_To_Pass& object = nullptr);

  /// Runs a pass on the stored documents.
  Pass_Outcome refresh();

  /// Runs the pass that apply() would run, and returns the outcome that it would have if no service
  /// failed. Writes nothing, calls no service of this host and waits for no lock. Throws
  /// Database_Error.
  Pass_Outcome plan(const Json_Document& config, const Json_Document* mapping,
                    const Plan_Observer& observer) const;

  /// What is stored of the pass that began last. To be used if its outcome was lost because
  /// something was thrown during the pass or after it.
  Kept kept() const noexcept { return kept_; }

  /// All faults that the parser finds in the documents, with the stored mapping if `mapping` is
  /// null, in the order of a pass: a pass would reject the documents with the first one. Empty if
  /// they are valid. Writes nothing and waits for no lock.
  std::vector<Check_Fault> check(const Json_Document& config, const Json_Document* mapping);

  /// The same, and appends the warnings of the judge.
  std::vector<Check_Fault> check(const Json_Document& config, const Json_Document* mapping,
                                 std::vector<Document_Warning>& warnings);

 private:
  std::unique_ptr<Vemora_Trigger_Manager> make_manager(const Json::Value& config,
                                                       const Json::Value& mapping,
                                                       std::unique_ptr<Trigger_Parser> parser);
  struct Given_Documents;
  std::unique_ptr<Trigger_Parser> make_parser(const Pass_Scope& pass,
                                              const Given_Documents& documents,
                                              std::vector<Check_Fault>& faults,
                                              Pass_Outcome& outcome);
  void update_config(Pass_Scope& pass, const Given_Documents& documents,
                     std::vector<Check_Fault>& faults, Pass_Outcome& outcome);
  void refresh(Pass_Scope& pass, const Given_Documents& documents, Pass_Outcome& outcome);
  std::vector<Document_Warning> judge(const Given_Documents& documents,
                                      const Trigger_Mapping& schedules,
                                      const std::vector<Trigger_Config>& triggers, bool are_valid,
                                      bool in_pass);
  void begin();
  void watch_deletions(Pass_Scope& pass, Pass_Outcome& outcome);
  Pass_Outcome run_plan(const Json_Document& config, const Json_Document* mapping,
                        const Plan_Observer& observer);
  void finish_plan(Pass_Scope& pass, Pass_Outcome& outcome);
  void finish(Pass_Scope& pass, const Documents& accepted, Pass_Outcome& outcome);
  Pass_Origin origin_of(const char* command) const;
  void tell_refusal(Pass_Outcome& outcome);
  void end(Pass_Scope& pass, Pass_Outcome& outcome);
  void reconcile_leftovers(Pass_Scope& pass);
  void name_corrupt_records(Pass_Outcome& outcome);

  kuv::logging::Source logger_;
  std::shared_ptr<Database> database_;
  std::uint64_t server_id_;
  std::shared_ptr<Repository> repository_;
  std::shared_ptr<Recording_Capture_Manager> capture_manager_;
  std::shared_ptr<Snapshot_Pusher> pusher_;
  std::shared_ptr<Inventory_Meta_Type_Resolver> resolver_;
  Judge_Documents judge_;
  bool warnings_reject_;
  bool refuses_mass_deletion_;
  Pass_Origin origin_;
  std::atomic<Kept> kept_ = Kept::nothing;
  std::mutex mutex_;  ///< held from the first read of a pass until its documents are stored
};

}  // namespace kuv::vemora::embedded_server
