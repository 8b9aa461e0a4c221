#pragma once

#include <atomic>
#include <cstdint>
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
#include "vemora/embedded_server/host/services.h"
#include "vemora/embedded_server/persistent/changes.h"
#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/pass_scope.h"
#include "vemora/platform/directive_config_processing.h"
#include "vemora/platform/export.h"
#include "vemora/platform/logging/source.h"

namespace kuv::vemora {
class Trigger_Parser;
class Vemora_Trigger_Manager;
}  // namespace kuv::vemora

namespace kuv::vemora::embedded_server {

/// What became of one pass.
struct Pass_Outcome {
  enum class Status {
    done,      ///< perhaps with errors of single triggers
    rejected,  ///< a document was rejected; nothing changed
    failed,    ///< the pass or the database failed
  };

  Status status = Status::failed;
  std::vector<Directive_Config_Processing::Error> errors;  ///< the library's own, in order
  std::vector<std::string> remarks;           ///< what else there is to say of a failure
  std::set<std::uint64_t> reconciled;         ///< cameras whose streams were brought in line
  std::optional<Trigger_Config_State> state;  ///< what the pusher received
  Changes changes;
  std::vector<Document_Warning> warnings;
  std::optional<Check_Fault> rejection;  ///< of a rejected document: what for, as check() tells it
  bool rejected_for_warnings = false;    ///< and for nothing else, since they are to reject
  bool changes_are_known = true;         ///< nobody may know what became of a commit
};

/// Who acts on what passes bring about, and who judges documents. Where one is missing, nobody
/// does.
struct Host_Services {
  std::shared_ptr<capture::Manager> capture_manager;
  std::shared_ptr<Trigger_Notification_Pusher> pusher;
  Judge_Documents judge = {};
  bool warnings_reject = false;  ///< a document with a warning is rejected, and nothing changes
};

/// Runs passes over one database as a server would. May be used from any thread; passes queue up.
/// What the database throws (Database_Error) before a pass has begun reaches the caller, and so
/// does what the services throw that is no standard exception.
class VEMORA_API Trigger_Host {
 public:
  Trigger_Host(std::shared_ptr<Database> database, std::uint64_t server_id,
               Host_Services services = {});

  /// Runs a pass with a new configuration, and a new mapping where one is given, and stores them
  /// when it succeeded. A mapping that is given must have its list; only stored ones may lack it.
  Pass_Outcome apply(const Json_Document& config, const Json_Document* mapping);

  /// Runs a pass on the stored documents.
  Pass_Outcome refresh();

  /// What is stored of the last pass that was begun, for whoever has to tell it where the outcome
  /// is lost: when something was thrown, in the pass or since.
  Kept kept() const noexcept { return kept_; }

  /// Everything that the parser finds wrong with the documents (with the stored mapping where none
  /// is given), in the order of a pass: the first one is what a pass would reject them with.
  /// Nothing when they are valid. Writes nothing and waits for nobody.
  std::vector<Check_Fault> check(const Json_Document& config, const Json_Document* mapping);

  /// The same, and what the judge says of the documents.
  std::vector<Check_Fault> check(const Json_Document& config, const Json_Document* mapping,
                                 std::vector<Document_Warning>& warnings);

 private:
  std::unique_ptr<Vemora_Trigger_Manager> make_manager(const Json::Value& config,
                                                       const Json::Value& mapping,
                                                       std::unique_ptr<Trigger_Parser> parser);
  struct Given_Documents;
  std::unique_ptr<Trigger_Parser> make_parser(const Given_Documents& documents,
                                              std::vector<Check_Fault>& noted,
                                              Pass_Outcome& outcome);
  void update_config(Pass_Scope& pass, const Given_Documents& documents,
                     std::vector<Check_Fault>& noted, Pass_Outcome& outcome);
  void refresh(const Given_Documents& documents, Pass_Outcome& outcome);
  std::vector<Document_Warning> judge(const Given_Documents& documents,
                                      const Trigger_Mapping& schedules,
                                      const std::vector<Trigger_Config>& triggers, bool are_valid,
                                      bool in_pass);
  void begin();
  void finish(Pass_Scope& pass, const Documents& accepted, Pass_Outcome& outcome);
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
  std::atomic<Kept> kept_ = Kept::nothing;
  std::mutex mutex_;  ///< from the first read of a pass to the storing of its documents
};

}  // namespace kuv::vemora::embedded_server
