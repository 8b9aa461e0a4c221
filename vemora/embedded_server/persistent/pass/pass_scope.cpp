// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/pass_scope.h"

#include <fmt/format.h>

#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/history/last_entry.h"
#include "vemora/embedded_server/persistent/history/pass_history.h"
#include "vemora/embedded_server/persistent/pass/documents.h"
#include "vemora/embedded_server/persistent/pass/pass.h"
#include "vemora/embedded_server/persistent/pass/pending_cameras.h"
#include "vemora/embedded_server/persistent/pass/write_changes.h"

namespace kuv::vemora::embedded_server {

/// What the scope keeps beside the pass itself.
class Pass_Scope::State {
 public:
  State(const std::shared_ptr<Database>& database, std::uint64_t id, Mode chosen)
      : server_id(id),
        site(database),
        pass(database,
             chosen == Mode::read_only ? Pass::Purpose::single_read : Pass::Purpose::whole_pass,
             chosen, id) {
    pass.record_in(history);
  }

  /// Who writes nothing needs no history.
  void look_back() {
    if (pass.commits_changes() && site->schema_version() >= first_version_with_history) {
      history.look_back(pass.engine());
    }
  }

  /// Of a pass that writes, as they were before. One that only reads sees the same state to its
  /// end, so that it has time until somebody asks.
  const Documents& stored_documents() {
    require_config();
    require_mapping();
    return documents_;
  }
  const std::optional<std::string>& stored_mapping() {
    require_mapping();
    return documents_.mapping;
  }

  /// Asked first, so that what is stored already keeps nobody out.
  bool changes_by_storing(const Documents& accepted, const std::set<std::uint64_t>& reconciled,
                          const Pass_Ending& ending) {
    if (history.differs(ending)) {
      return true;
    }
    if (!accepted.config && !accepted.mapping && reconciled.empty()) {
      return false;
    }
    bool changes = false;
    pass.run([&](Site_Index&) {
      changes = !are_stored(pass.odb(), accepted) || are_pending(pass.engine(), reconciled) ||
                !is_claimed(pass.odb());
    });
    pass.commit();
    return changes;
  }

  /// Those that are stored when the accepted ones are.
  Document_Digests digests_with(const Documents& accepted) const {
    return {digest_of_text(accepted.config ? accepted.config : documents_.config),
            digest_of_text(accepted.mapping ? accepted.mapping : documents_.mapping)};
  }

  std::uint64_t server_id;
  std::shared_ptr<Database> site;
  Pass_History history;
  Pass pass;
  bool has_nothing_to_store = false;
  int commits_before_storing = -1;  ///< of the pass; negative as long as nothing is to be stored

 private:
  void require_config() { load_once("config", has_config_, documents_.config); }
  void require_mapping() { load_once("mapping", has_mapping_, documents_.mapping); }

  void load_once(const char* kind, bool& is_loaded, std::optional<std::string>& document) {
    if (!is_loaded) {
      pass.run([&](Site_Index&) { document = load_document(pass.odb(), kind); });
      is_loaded = true;
    }
  }

  Documents documents_;
  bool has_config_ = false;
  bool has_mapping_ = false;
};

Pass_Scope::Pass_Scope(const std::shared_ptr<Database>& database, std::uint64_t server_id,
                       Mode mode)
    : state_(std::make_unique<State>(database, server_id, mode)) {
  state_->pass.run([this](Site_Index&) {
    require_owner(state_->pass.odb(), state_->server_id);
    if (state_->pass.commits_changes()) {
      state_->stored_documents();
    }
    state_->look_back();
  });
}

Pass_Scope::~Pass_Scope() = default;

const Documents& Pass_Scope::documents() const {
  return state_->stored_documents();
}

const std::optional<std::string>& Pass_Scope::mapping() const {
  return state_->stored_mapping();
}

void Pass_Scope::record_as(Pass_Origin origin) {
  state_->history.record_as(std::move(origin));
}

void Pass_Scope::forget_look() {
  state_->pass.forget_look();
}

void Pass_Scope::ask_before_commit(Permit_Deletions permit) {
  state_->pass.ask_before_commit(std::move(permit));
}

bool Pass_Scope::is_given_up() const noexcept {
  return state_->pass.is_given_up();
}

void Pass_Scope::end() {
  state_->pass.end();
}

const std::optional<std::string>& Pass_Scope::fault() const {
  return state_->pass.fault();
}

Kept Pass_Scope::kept() const noexcept {
  const Pass& pass = state_->pass;
  const bool has_stored =
      state_->commits_before_storing >= 0 && pass.commits() > state_->commits_before_storing;
  if (has_stored || state_->has_nothing_to_store) {
    return Kept::everything;
  }
  if (pass.commits() > 0) {
    return pass.commit_not_known() ? Kept::records_perhaps_more : Kept::records;
  }
  return pass.commit_not_known() ? Kept::not_known : Kept::nothing;
}

void Pass_Scope::start_over() {
  state_->pass.start_over();
}

bool Pass_Scope::changes_are_known() const {
  return state_->pass.commit_not_known() != Commit_Not_Known::Known::nothing;
}

const Changes& Pass_Scope::changes() const {
  return state_->pass.changes();
}

std::set<std::uint64_t> Pass_Scope::pending_cameras() {
  std::set<std::uint64_t> ids;
  state_->pass.run([this, &ids](Site_Index&) { ids = load_pending(state_->pass.engine()); });
  state_->pass.commit();  // what is stored next must not stand on what was read here
  ids.insert(state_->pass.cameras_not_noted().begin(), state_->pass.cameras_not_noted().end());
  return ids;
}

void Pass_Scope::store(const Documents& accepted, const std::set<std::uint64_t>& reconciled,
                       const Pass_Ending& ending) {
  if (!state_->pass.commits_changes()) {
    return;
  }
  if (!state_->changes_by_storing(accepted, reconciled, ending)) {
    state_->pass.confirm_place();
    state_->has_nothing_to_store = true;
    return;
  }
  state_->pass.run([&](Site_Index&) {
    state_->pass.begin_writing();
    store_documents(state_->pass.odb(), accepted);
    strike_out_pending(state_->pass.engine(), reconciled);
    claim_for(state_->pass.odb(), state_->server_id);
    state_->history.finish(state_->pass.engine(), state_->pass.changes(), ending,
                           state_->digests_with(accepted), reconciled);
  });
  state_->commits_before_storing = state_->pass.commits();
  try {
    state_->pass.commit();
  } catch (const Database_Error& error) {
    const auto& not_known = state_->pass.commit_not_known();
    if (!not_known) {
      throw;
    }
    throw Database_Error(fmt::format(
        *not_known == Commit_Not_Known::Known::nothing
            ? "{}; it is not known whether the documents were stored"
            : "{}; the documents are stored on this server, and it is not known whether a standby "
              "has them",
        error.what()));
  }
}

}  // namespace kuv::vemora::embedded_server
