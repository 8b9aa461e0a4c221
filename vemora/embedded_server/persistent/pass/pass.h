// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <odb/transaction.hxx>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/embedded_server/persistent/engine/commit_not_known.h"
#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/history/pass_history.h"
#include "vemora/embedded_server/persistent/index/site_index.h"
#include "vemora/embedded_server/persistent/pass/pass_phase.h"
#include "vemora/embedded_server/persistent/pass_scope.h"

namespace kuv::vemora::embedded_server {

/// One transaction and the site as it is seen in it; what Pass_Scope and every single operation are
/// made of.
class Pass {
 public:
  enum class Purpose {
    whole_pass,    ///< keeps other passes out; its last write commits it
    single_write,  ///< keeps other passes out
    single_read,
  };

  /// One at a time on a thread, over whatever database: throws std::logic_error otherwise.
  Pass(std::shared_ptr<Database> database, Purpose purpose,
       Pass_Scope::Mode mode = Pass_Scope::Mode::commit,
       std::optional<std::uint64_t> server_id = std::nullopt);
  ~Pass();
  Pass(const Pass&) = delete;
  Pass& operator=(const Pass&) = delete;

  /// The one that is open over this database on this thread; null when there is none.
  static Pass* current(const Database& database);

  Purpose purpose() const { return purpose_; }

  /// Runs an operation on the site. A fault in it sticks: it is thrown as Database_Error, and by
  /// every operation from then on.
  template <class Operation>
  auto run(Operation operation) {
    throw_if_faulty();
    try {
      begin_if_necessary();
      return operation(site_);
    } catch (const std::exception& fault) {
      note_fault(fault);
      throw Database_Error(*fault_);
    } catch (...) {
      poison("an unknown failure");
      throw;
    }
  }

  /// To be called before anything is written to the tables. Waits until other programs let this one
  /// write, and brings the tables of an older site up to date in the same transaction: what writes
  /// nothing, or is rolled back, leaves them as they were.
  void begin_writing();

  /// Writes what changed and commits it.
  void commit();

  /// The same at the end of a single operation: a fault says what became of the commit.
  void commit_operation();

  /// See Pass_Scope.
  void start_over();

  /// Commits what a pass that failed had done until then. Throws when the database lost that.
  void end();

  /// To be called before success is reported: a database that was moved or deleted is a fault.
  void confirm_place();

  /// To be called by each operation that writes.
  void note_write() noexcept { come_to(Pass_Event::write); }

  // See Pass_Scope.
  void forget_look() { site_.forget_look(); }
  void ask_before_commit(Permit_Deletions permit) { permit_ = std::move(permit); }
  bool is_given_up() const noexcept { return given_up_; }

  /// Records that are committed leave an entry there from now on. It outlives the pass.
  void record_in(Pass_History& history) { history_ = &history; }

  /// The cameras that would be pending, had it been committed. Empty in a pass that commits.
  const std::set<std::uint64_t>& cameras_not_noted() const { return cameras_not_noted_; }

  /// Whether anything of it is ever written.
  bool commits_changes() const noexcept { return mode_ == Pass_Scope::Mode::commit; }

  /// Of a commit that nobody can know the fate of, what is known all the same; nothing where there
  /// was none.
  const std::optional<Commit_Not_Known::Known>& commit_not_known() const {
    return commit_not_known_;
  }

  /// How many commits were carried out.
  int commits() const noexcept { return commits_; }

  const Changes& changes() const { return changes_; }
  const std::optional<std::string>& fault() const { return fault_; }

  Engine& engine() { return database_->engine(); }

  /// The database itself, with a transaction begun.
  odb::database& odb();

 private:
  void open_session();
  void begin_if_necessary();
  void bring_tables_up_to_date();
  void store_changes(Site_Index& site);
  void give_up_unless_permitted(const Site_Index::Net_Changes& net);
  void commit_changes(const Site_Index::Net_Changes& net, Changes& changes);
  void write(const Site_Index::Net_Changes& net, const Changes& changes);
  void require_in_place();
  void commit_what_came_before_the_fault();
  void note_failed_commit(const std::exception& fault, bool begun, Changes& changes) noexcept;
  void note_doubt(const std::exception& fault, bool begun) noexcept;
  void note_fault(const std::exception& fault) noexcept;
  void poison(const char* reason) noexcept;
  void come_to(Pass_Event event) noexcept { phase_ = next(phase_, event); }
  void throw_if_faulty() const;
  void verify_against_database();

  std::shared_ptr<Database> database_;
  Purpose purpose_;
  Pass_Scope::Mode mode_;
  std::optional<std::uint64_t> server_id_;
  std::unique_ptr<Engine::Session> session_;
  std::unique_ptr<odb::transaction> transaction_;
  bool writes_ = false;  ///< whether anything is written in the transaction
  Site_Index site_;
  Changes changes_;
  Pass_Phase phase_ = Pass_Phase::working;
  std::optional<std::string> fault_;  ///< in the phases in which one sticks
  int commits_ = 0;
  std::optional<Commit_Not_Known::Known> commit_not_known_;
  bool lost_nothing_ = false;  ///< the fault is of a commit that had nothing to keep
  Permit_Deletions permit_;
  bool given_up_ = false;
  std::set<std::uint64_t> cameras_not_noted_;
  Pass_History* history_ = nullptr;
};

}  // namespace kuv::vemora::embedded_server
