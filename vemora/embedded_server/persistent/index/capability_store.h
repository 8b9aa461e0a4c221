// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/platform/odb_runtime.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

#include "vemora/embedded_server/persistent/index/id_hash.h"
#include "vemora/platform/records/capability_document.h"

namespace odb {
class database;
}

namespace kuv::vemora::embedded_server {

/// Runs an action with a transaction at hand, as a repository operation of its own: a fault in it
/// is one of the pass.
using Capability_Guard = std::function<void(const std::function<void()>&)>;

/// The capability documents of all cameras, read with one statement a table when the first of them
/// is asked for; each text is parsed once, however many cameras share it. May be used from any
/// thread: records that share it go where their holders take them.
class Capability_Store {
 public:
  using Tree = Capability_Document::Tree;

  Capability_Store(odb::database& database, Capability_Guard guard)
      : database_(database), guard_(std::move(guard)) {}

  /// What the camera says; null when it says nothing. Throws Database_Error for a stored text that
  /// is no JSON.
  std::shared_ptr<const Tree> tree(std::uint64_t camera_id);

  /// Whether tree() answers. A damaged text is no fault of the pass before tree() is called. To be
  /// called with a transaction at hand.
  bool is_readable(std::uint64_t camera_id);

 private:
  struct Document {
    std::string text;
    std::shared_ptr<const Tree> tree;
    bool is_damaged = false;  ///< as far as it is known
  };

  void load();
  Document* find(std::uint64_t camera_id);  ///< null when the camera says nothing
  static void parse_once(std::uint64_t camera_id, Document& document);

  odb::database& database_;
  Capability_Guard guard_;
  std::mutex mutex_;  ///< of all that follows
  bool loaded_ = false;
  std::unordered_map<std::uint64_t, std::uint64_t, Id_Hash> document_ids_;  ///< by camera id
  std::unordered_map<std::uint64_t, Document, Id_Hash> documents_;
};

}  // namespace kuv::vemora::embedded_server
