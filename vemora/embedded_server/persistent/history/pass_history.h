// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "vemora/embedded_server/persistent/changes.h"
#include "vemora/embedded_server/persistent/history_entry.h"
#include "vemora/embedded_server/persistent/mapping/rows.h"

namespace kuv::vemora::embedded_server {

class Engine;

/// The digests of the documents that are stored; nothing for one that is not.
struct Document_Digests {
  std::optional<std::string> config;
  std::optional<std::string> mapping;
};

/// The digest under which the history keeps a text.
std::optional<std::string> digest_of_text(const std::optional<std::string>& text);

/// The entry that a pass leaves in the history. It is begun in the transaction of the records, with
/// what they changed, and finished in that of the documents; a pass that is cut short in between
/// leaves it as it was begun. All but the constructor works in the transaction at hand.
class Pass_History {
 public:
  /// The pass begins now.
  Pass_History();

  void record_as(Pass_Origin origin);

  /// Reads the entry of the pass before. Done by the others if it was not done before; the tables
  /// may be too old for it at first.
  void look_back(Engine& engine);

  /// To be called when records are written, with everything that the pass has changed. Begins the
  /// entry.
  void note(Engine& engine, const Changes& changes);

  /// Whether there is something to finish: the entry was begun, or the errors are not those of the
  /// pass before.
  bool differs(const Pass_Ending& ending) const;

  /// To be called when the documents are stored.
  void finish(Engine& engine, const Changes& changes, const Pass_Ending& ending,
              const Document_Digests& documents, const std::set<std::uint64_t>& reconciled);

 private:
  void begin(Engine& engine);
  bool keep_documents(Engine& engine, const Document_Digests& documents);
  bool keep_errors(Engine& engine, const Pass_Ending& ending);

  rows::History_Entry entry_;
  rows::History_Entry last_;  ///< of the number 0 if there is none
  bool has_looked_back_ = false;
  bool is_begun_ = false;
};

}  // namespace kuv::vemora::embedded_server
