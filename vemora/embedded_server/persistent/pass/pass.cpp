// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/pass/pass.h"

#include <fmt/format.h>

#include <new>
#include <odb/exception.hxx>
#include <stdexcept>

#include "vemora/embedded_server/persistent/engine/bring_up_to_date.h"
#include "vemora/embedded_server/persistent/pass/count_deletions.h"
#include "vemora/embedded_server/persistent/pass/join_pass.h"
#include "vemora/embedded_server/persistent/pass/site_row.h"
#include "vemora/embedded_server/persistent/pass/verify_index.h"
#include "vemora/embedded_server/persistent/pass/write_changes.h"

namespace kuv::vemora::embedded_server {
namespace {

constexpr const char* out_of_memory = "out of memory";  // short enough for a string without any

thread_local Pass* open_pass = nullptr;

/// Capabilities are looked at by whoever holds a camera, in a pass or after it.
Capability_Guard capability_guard(const std::shared_ptr<Database>& database) {
  return [database](const std::function<void()>& action) {
    read(database, [&action](Site_Index&) { action(); });
  };
}

}  // namespace

Pass::Pass(std::shared_ptr<Database> database, Purpose purpose, Pass_Scope::Mode mode,
           std::optional<std::uint64_t> server_id)
    : database_(std::move(database)),
      purpose_(purpose),
      mode_(mode),
      server_id_(server_id),
      site_(database_->engine().odb(), capability_guard(database_)) {
  if (purpose_ == Purpose::single_write) {
    database_->note_kept(Kept::nothing);  // also if it cannot begin
  }
  if (open_pass != nullptr) {
    throw std::logic_error("a pass is open on this thread already");
  }
  open_session();
  open_pass = this;
}

void Pass::open_session() {
  try {
    session_ = engine().open_session(purpose_ == Purpose::single_read
                                         ? Engine::Session::Access::shared
                                         : Engine::Session::Access::exclusive);
  } catch (const std::exception& fault) {
    throw Database_Error(
        fmt::format("database {}: {}", engine().location(), engine().describe(fault)));
  }
}

Pass::~Pass() {
  if (purpose_ == Purpose::single_write) {
    database_->note_kept(commits_ > 0        ? Kept::everything
                         : commit_not_known_ ? Kept::not_known
                                             : Kept::nothing);
  }
  open_pass = nullptr;
}

Pass* Pass::current(const Database& database) {
  return open_pass != nullptr && open_pass->database_.get() == &database ? open_pass : nullptr;
}

/// Whoever will write on the ground of what it reads may do so from the first statement on. A whole
/// pass may turn out to write nothing, and keeps nobody out before it knows.
void Pass::begin_if_necessary() {
  if (transaction_) {
    return;
  }
  // Its holder first: a transaction that nobody holds would keep its connection for ever.
  auto transaction = std::make_unique<odb::transaction>();
  transaction->reset(session_->begin());
  transaction_ = std::move(transaction);
  writes_ = false;
  if (purpose_ == Purpose::single_write) {
    session_->begin_writing();
  }
}

void Pass::begin_writing() {
  begin_if_necessary();
  session_->begin_writing();
  bring_tables_up_to_date();
  writes_ = true;
}

void Pass::bring_tables_up_to_date() {
  if (database_->schema_version() >= current_schema_version) {
    return;
  }
  try {
    bring_up_to_date(engine(), load_site(engine().odb()).schema_version);
  } catch (const std::exception&) {
    come_to(Pass_Event::loss);
    transaction_.reset();  // half of it may be made
    throw;
  }
}

odb::database& Pass::odb() {
  begin_if_necessary();
  return engine().odb();
}

void Pass::commit() {
  run([this](Site_Index& site) {
    store_changes(site);
    verify_against_database();
  });
}

void Pass::commit_operation() {
  try {
    commit();
  } catch (const Database_Error& fault) {
    if (commit_not_known_) {
      throw Database_Error(
          fmt::format("{}; {}", fault.what(), fate_of("what was written", *commit_not_known_)));
    }
    throw;
  }
}

void Pass::store_changes(Site_Index& site) {
  const Site_Index::Net_Changes net = site.settle();
  Changes changes = changes_;
  append_changes(net, changes);
  give_up_unless_permitted(net);
  if (commits_changes()) {
    commit_changes(net, changes);
  } else {
    cameras_not_noted_.insert(net.subscriptions.cameras.begin(), net.subscriptions.cameras.end());
  }
  changes_ = std::move(changes);
  if (commits_ > 0) {
    require_in_place();
  }
}

/// What is committed already stays, so that only the first commit can be refused.
void Pass::give_up_unless_permitted(const Site_Index::Net_Changes& net) {
  if (!permit_ || commits_ > 0 || given_up_) {
    return;
  }
  const Deletions deletions = deletions_of(net, site_);
  if (!deletions.empty() && !permit_(deletions) && commits_changes()) {
    given_up_ = true;
    mode_ = Pass_Scope::Mode::roll_back;
  }
}

void Pass::commit_changes(const Site_Index::Net_Changes& net, Changes& changes) {
  bool begun = false;
  try {
    require_in_place();
    write(net, changes);
    begun = true;
    session_->commit(*transaction_);
  } catch (const std::exception& fault) {
    note_failed_commit(fault, begun, changes);
    transaction_.reset();  // half of it may be written: all of it is rolled back
    throw;
  }
  ++commits_;
  if (writes_) {
    database_->note_schema_version(current_schema_version);
  }
  come_to(Pass_Event::commit);
  transaction_.reset();
}

/// What became of a commit that failed, once it was `begun`, with these changes. To be called as
/// long as the connection still knows what the fault was.
void Pass::note_failed_commit(const std::exception& fault, bool begun, Changes& changes) noexcept {
  if (writes_) {
    note_doubt(fault, begun);
  } else if (begun) {
    lost_nothing_ = true;
  }
  if (commit_not_known_ == Commit_Not_Known::Known::committed_here) {
    changes_ = std::move(changes);
  }
  come_to(commit_not_known_ ? Pass_Event::doubt : Pass_Event::loss);
  note_fault(fault);
}

void Pass::note_doubt(const std::exception& fault, bool begun) noexcept {
  const auto* const not_known = dynamic_cast<const Commit_Not_Known*>(&fault);
  if (not_known != nullptr) {
    commit_not_known_ = not_known->known();
  } else if (begun && dynamic_cast<const std::bad_alloc*>(&fault) != nullptr) {
    // Without memory, the engine cannot even say that it does not know.
    commit_not_known_ = Commit_Not_Known::Known::nothing;
  }
}

void Pass::confirm_place() {
  throw_if_faulty();
  try {
    require_in_place();
  } catch (const Database_Error& error) {
    note_fault(error);
    throw Database_Error(*fault_);
  }
}

/// Says also what became of what was committed.
void Pass::require_in_place() {
  try {
    engine().require_in_place();
  } catch (const Database_Error& error) {
    throw Database_Error(
        commits_ > 0 ? fmt::format("{}; what was committed went into that file", error.what())
                     : error.what());
  }
}

/// `changes` are all of the pass.
void Pass::write(const Site_Index::Net_Changes& net, const Changes& changes) {
  if (net.empty()) {
    return;
  }
  begin_writing();
  write_changes(engine(), net);
  site_.save_ids();
  if (server_id_) {
    claim_for(engine().odb(), *server_id_);
  }
  if (history_ != nullptr) {
    history_->note(engine(), changes);
  }
}

void Pass::start_over() {
  if (commits_changes()) {
    throw std::logic_error("what is committed cannot be forgotten");
  }
  throw_if_faulty();
  site_.forget_changes();
  changes_ = {};
  cameras_not_noted_.clear();
}

void Pass::end() {
  if (!fault_) {
    try {
      commit();
      return;
    } catch (const std::exception&) {  // which sticks
    }
  }
  if (phase_ == Pass_Phase::faulty) {
    commit_what_came_before_the_fault();
  }
  const bool is_late = commits_ > 0;  // what was committed before is kept
  const std::string written = is_late ? "the pass wrote after its last commit" : "the pass wrote";
  if (phase_ == Pass_Phase::in_doubt) {
    throw Database_Error(
        fmt::format("{}; {}", *fault_, fate_of("what " + written, *commit_not_known_)));
  }
  if (phase_ == Pass_Phase::lost && lost_nothing_) {
    throw Database_Error(
        fmt::format("{}; there was nothing {}to be written", *fault_, is_late ? "more " : ""));
  }
  if (phase_ == Pass_Phase::lost) {
    throw Database_Error(fmt::format("{}; nothing that {} was kept", *fault_, written));
  }
}

/// The fault sticks, whatever comes of it.
void Pass::commit_what_came_before_the_fault() {
  if (!transaction_ || !engine().holds_transaction()) {
    come_to(Pass_Event::loss);
    return;
  }
  try {
    store_changes(site_);
  } catch (const std::exception& error) {
    if (phase_ == Pass_Phase::over) {  // committed, and what failed is what came after it
      throw Database_Error(fmt::format("{}; {}", *fault_, error.what()));
    }
    come_to(Pass_Event::loss);
    transaction_.reset();
  }
}

/// Fails for want of memory as little as for anything else: a fault that did not stick would let
/// the pass go on with half a site.
void Pass::note_fault(const std::exception& fault) noexcept {
  if (fault_) {
    return;  // the first one, on its way out of an operation within an operation
  }
  const bool of_the_database = dynamic_cast<const Database_Error*>(&fault) != nullptr ||
                               dynamic_cast<const odb::exception*>(&fault) != nullptr;
  if (!of_the_database) {
    poison(fault.what());
    return;
  }
  come_to(Pass_Event::fault);
  fault_.emplace();
  try {
    fault_ = fmt::format("database {}: {}", engine().location(), engine().describe(fault));
  } catch (const std::exception&) {
    *fault_ = out_of_memory;
  }
}

/// What failed was no operation of the database, so the site in memory may be half changed.
void Pass::poison(const char* reason) noexcept {
  come_to(Pass_Event::loss);
  try {
    fault_ = reason;
  } catch (const std::bad_alloc&) {
    fault_.emplace(out_of_memory);
  }
  transaction_.reset();
}

void Pass::throw_if_faulty() const {
  if (fault_) {
    throw Database_Error(*fault_);
  }
}

void Pass::verify_against_database() {
#ifndef NDEBUG
  if (purpose_ == Purpose::whole_pass && commits_changes()) {
    site_.look([this] { verify_index(*session_, engine().odb(), site_); });
  }
#endif
}

}  // namespace kuv::vemora::embedded_server
