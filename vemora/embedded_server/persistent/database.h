// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/kept.h"
#include "vemora/embedded_server/persistent/open_mode.h"
#include "vemora/platform/export.h"
#include "vemora/platform/repositories/repository.h"

namespace kuv::vemora::embedded_server {

class Engine;

/// The database of one site. Shared by everything that works on it; may be used from any thread.
class VEMORA_API Database : public std::enable_shared_from_this<Database> {
 public:
  /// What to do where there is no site.
  using Open_Mode = embedded_server::Open_Mode;

  /// Opens the database at `location`: the path of an SQLite file, also written "sqlite:PATH", or
  /// "postgresql://USER@HOST:PORT/DATABASE?schema=NAME". `lock_wait` bounds every wait for another
  /// process. The tables of an older version stay as they are until something is written: they are
  /// brought up to date in the same transaction. Throws Database_Error.
  static std::shared_ptr<Database> open(
      const std::string& location, Open_Mode mode = Open_Mode::existing,
      std::chrono::milliseconds lock_wait = std::chrono::seconds(30));

  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  /// Whether there is something to work on. Without it, only unstorable_texts() may be asked.
  bool holds_site() const { return schema_version_ != 0; }

  /// The version of its tables as it was last seen; 0 where there is no site. Those of an older
  /// version than this library's are read as they are.
  std::int32_t schema_version() const noexcept { return schema_version_; }
  /// For the persistence library itself: what schema_version() answers from now on.
  void note_schema_version(std::int32_t version) noexcept { schema_version_ = version; }

  /// The server that the database belongs to: the first one whose pass stored something, records or
  /// documents. Nothing before that; an inventory and single operations belong to nobody.
  std::optional<std::uint64_t> owner();

  /// Throws Database_Error when the database belongs to another server.
  void require_owner(std::uint64_t server_id);

  /// What is stored of the last single operation that wrote, an inventory for one: for whoever has
  /// to tell it where something was thrown.
  Kept kept() const noexcept { return kept_; }
  /// For the persistence library itself: what kept() answers from now on.
  void note_kept(Kept kept) noexcept { kept_ = kept; }

  /// What differs between the database engines. For the persistence library itself.
  Engine& engine() { return *engine_; }

 private:
  Database(std::unique_ptr<Engine> engine, std::int32_t schema_version);

  std::unique_ptr<Engine> engine_;
  std::atomic<std::int32_t> schema_version_;
  std::atomic<Kept> kept_ = Kept::nothing;
};

/// The repositories over a database. Each operation joins the pass that is open on its thread (see
/// Pass_Scope), or runs in a transaction of its own. Faults are thrown as Database_Error.
VEMORA_API std::shared_ptr<Repository> make_repository(const std::shared_ptr<Database>& database);

}  // namespace kuv::vemora::embedded_server
