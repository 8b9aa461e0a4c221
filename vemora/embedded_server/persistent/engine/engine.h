// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstdint>
#include <exception>
#include <functional>
#include <initializer_list>
#include <memory>
#include <odb/database.hxx>
#include <odb/transaction.hxx>
#include <optional>
#include <string>
#include <string_view>

namespace kuv::vemora::embedded_server {

class Row_Writer;

/// What differs between the database engines; the rest of the library asks no engine its name.
/// Everything throws Database_Error, or what ODB throws.
class Engine {
 public:
  /// What a pass works through.
  class Session {
   public:
    enum class Access {
      shared,     ///< beside others
      exclusive,  ///< keeps other exclusive ones out, of whatever process, as long as it lives
    };

    virtual ~Session() = default;

    /// Begins a transaction, for odb::transaction to hold; one at a time.
    virtual odb::transaction_impl* begin() = 0;

    /// The same for one that writes from its first statement on, in an empty database too.
    virtual odb::transaction_impl* begin_immediately() = 0;

    /// To be called in a transaction before its first write: waits until no other program keeps
    /// this one from writing. Throws Database_Error when that takes too long, and when another
    /// program has changed what the transaction read.
    virtual void begin_writing() = 0;

    /// Commits a transaction that begin() began, the current one of this thread. Throws
    /// Commit_Not_Known when nobody can know what became of it; after any other fault nothing of it
    /// is kept.
    virtual void commit(odb::transaction& transaction) = 0;
  };

  virtual ~Engine() = default;

  virtual odb::database& odb() = 0;

  virtual Row_Writer& rows() = 0;

  /// How people call this database.
  virtual const std::string& location() const = 0;

  /// An exclusive one waits until no other is there; throws Database_Error when that takes too
  /// long.
  virtual std::unique_ptr<Session> open_session(Session::Access access) = 0;

  /// Brings tables of version `present`, which is 0 where there are none, up to the version that
  /// this library works with. In the current transaction, which may write. Throws Unfit_For_Step
  /// when what another program put there is in the way.
  virtual void migrate(std::int32_t present) = 0;

  /// The version of the schema; nothing where the database is empty. Throws when it is not ours.
  virtual std::optional<std::int32_t> schema_version() = 0;

  /// Whether a row with these texts in it, beside numbers, can be stored.
  virtual bool can_hold(std::initializer_list<std::string_view> texts) = 0;

  /// Whether the transaction that is current on this thread can still be committed.
  virtual bool holds_transaction() = 0;

  /// Throws Database_Error when the location does not lead to what was opened any more.
  virtual void require_in_place() {}

  /// What a fault of ODB means, for people.
  virtual std::string describe(const std::exception& fault) = 0;
};

/// The version of the schema that this library reads and writes.
inline constexpr std::int32_t current_schema_version = 4;

}  // namespace kuv::vemora::embedded_server
