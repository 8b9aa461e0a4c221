// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "vemora/embedded_server/persistent/changes.h"
#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/deletions.h"
#include "vemora/embedded_server/persistent/history_entry.h"
#include "vemora/embedded_server/persistent/kept.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// The accepted documents, as they were written; nothing before the first one was accepted.
struct Documents {
  std::optional<std::string> config;
  std::optional<std::string> mapping;
};

/// One pass over a database: as long as the object lives, every repository call of its thread works
/// in its one transaction, and no other process begins a pass.
///
/// The last write of the pass, the clean-up of the detection records, commits it, before the
/// capture manager and the pusher are called; what is read later is read from the same state. A
/// fault sticks: after the database failed, each later repository call throws the same fault, so
/// that no clean-up is based on records that could not be read.
///
///     Pass_Scope pass(database, server_id);
///     Vemora_Trigger_Manager manager(pass.documents() ...);
///     const auto result = manager.update_config(config);
///     pass.end();
///     if (result.success) { pass.store(...); }
///
/// To be used on one thread, and one at a time on it.
class VEMORA_API Pass_Scope {
 public:
  /// What becomes of what the pass does.
  enum class Mode {
    commit,     ///< it is stored, with the last write of the pass
    roll_back,  ///< nothing is ever written; changes() says what would have been
    read_only,  ///< for readers that want one consistent state: waits for nobody, stores nothing
  };

  /// Waits for other processes' passes, for as long as the database was opened with, and begins.
  /// Throws Database_Error when the wait ends in vain, and when the database belongs to another
  /// server than `server_id`.
  Pass_Scope(const std::shared_ptr<Database>& database, std::uint64_t server_id,
             Mode mode = Mode::commit);

  /// Rolls back what is not committed and lets other processes go on.
  ~Pass_Scope();
  Pass_Scope(const Pass_Scope&) = delete;
  Pass_Scope& operator=(const Pass_Scope&) = delete;

  /// The accepted documents as they were when the pass began. A pass that commits nothing reads
  /// them when it is asked for them first, and throws Database_Error if it cannot.
  const Documents& documents() const;

  /// The mapping alone: a configuration, which may be large, is not read for it.
  const std::optional<std::string>& mapping() const;

  /// Who runs it, and why: for its entry in the history. Without it, the command is called "pass".
  /// To be called before anything is written.
  void record_as(Pass_Origin origin);

  /// To be called between a look at the site and the pass itself, so that changes() are those of a
  /// pass before which nobody looked: a pass tidies up only the tables that it asks for.
  void forget_look();

  /// `permit` is asked before the first commit, if that would delete anything. If it answers false,
  /// the pass is given up: nothing of it is ever written, and from then on it goes on as in the
  /// mode roll_back. In a mode that commits nothing, the answer does not matter.
  void ask_before_commit(Permit_Deletions permit);

  /// Whether it was given up, because what it would delete was not permitted.
  bool is_given_up() const noexcept;

  /// To be called when the trigger manager is done. If the pass failed before its last write, what
  /// it has written is committed; throws Database_Error if the database lost that, saying that
  /// nothing was kept or that this is not known. A fault after the last write only sticks.
  void end();

  /// The fault that sticks; nothing as long as the database did what it was asked.
  const std::optional<std::string>& fault() const;

  /// Everything once store() has stored what it was given.
  Kept kept() const noexcept;

  /// False if it is not known what became of a commit: changes() may lack something then.
  bool changes_are_known() const;

  /// In a mode that commits nothing: forgets what the pass did, so that another one can be run on
  /// the same state, read in the same transaction. Throws the fault that sticks, and
  /// std::logic_error in a mode that commits.
  void start_over();

  /// What the pass wrote; complete once it is committed or ended.
  const Changes& changes() const;

  /// The cameras whose subscriptions were added, deleted, or updated with other triggers, in this
  /// pass or in one that was cut short, and whose streams have not been reconciled since. A link
  /// that ended because its trigger was deleted does not count. In a mode that commits
  /// nothing, those that would be pending. After end().
  std::set<std::uint64_t> pending_cameras();

  /// Stores documents, where given, strikes out cameras that were reconciled, and finishes the
  /// entry of the history, in one transaction of its own. Writes nothing if the pass has changed
  /// nothing, all of this is stored already, and the errors are those of the pass before. After
  /// end(). Without it, the entry of a pass that wrote something is that of one that was cut short.
  void store(const Documents& accepted, const std::set<std::uint64_t>& reconciled,
             const Pass_Ending& ending = {});

 private:
  class State;
  std::unique_ptr<State> state_;
};

}  // namespace kuv::vemora::embedded_server
