// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/history/pass_history.h"

#include <fmt/format.h>

#include <chrono>
#include <odb/database.hxx>
#include <utility>
#include <vector>

#include "rows-odb.h"
#include "vemora/embedded_server/persistent/engine/engine.h"
#include "vemora/embedded_server/persistent/engine/row_writer.h"
#include "vemora/embedded_server/persistent/history.h"
#include "vemora/embedded_server/persistent/history/entry_row.h"
#include "vemora/embedded_server/persistent/history/error_texts.h"
#include "vemora/embedded_server/persistent/history/give_up_the_oldest.h"
#include "vemora/embedded_server/persistent/history/id_ranges.h"
#include "vemora/embedded_server/persistent/history/last_entry.h"
#include "vemora/embedded_server/persistent/history/user_at_host.h"
#include "vemora/embedded_server/texts/characters.h"
#include "vemora/embedded_server/texts/printable.h"
#include "vemora/embedded_server/texts/sha256.h"

namespace kuv::vemora::embedded_server {
namespace {

std::int64_t seconds_since_1970() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::seconds>(now).count();
}

/// A text that every database can hold.
std::string storable(const std::string& text) {
  const bool is_storable = is_utf8(text) && text.find('\0') == std::string::npos;
  return is_storable ? text : printable(text);
}

std::optional<std::string> digest_of_errors(const std::vector<std::string>& errors) {
  return errors.empty() ? std::nullopt : digest_of_text(joined_texts(errors));
}

std::int32_t status_of(const Pass_Ending& ending) {
  return static_cast<std::int32_t>(ending.success ? History_Entry::Status::done
                                                  : History_Entry::Status::failed);
}

}  // namespace

std::optional<std::string> digest_of_text(const std::optional<std::string>& text) {
  if (!text) {
    return std::nullopt;
  }
  SHA256 digest;
  digest.add(*text);
  return digest.finish();
}

Pass_History::Pass_History() {
  entry_.at = seconds_since_1970();
  entry_.command = "pass";
}

void Pass_History::record_as(Pass_Origin origin) {
  if (!origin.command.empty()) {
    entry_.command = storable(origin.command);
  }
  if (!origin.by.empty()) {
    entry_.author = storable(origin.by);
  }
  if (origin.note) {
    entry_.note = storable(*origin.note);
  }
}

void Pass_History::look_back(Engine& engine) {
  if (!has_looked_back_) {
    last_ = last_entry_in(engine.odb()).value_or(rows::History_Entry());
    has_looked_back_ = true;
  }
}

/// The documents are those from before until others are stored.
void Pass_History::begin(Engine& engine) {
  look_back(engine);
  entry_.pass = last_.pass + 1;
  entry_.status = static_cast<std::int32_t>(History_Entry::Status::cut_short);
  entry_.config = last_.config;
  entry_.mapping = last_.mapping;
  if (!entry_.author) {
    entry_.author = user_at_host();
  }
}

void Pass_History::note(Engine& engine, const Changes& changes) {
  if (!is_begun_) {
    begin(engine);
  }
  note_changes(changes, entry_);
  if (is_begun_) {
    engine.rows().put(std::vector{entry_});
  } else {
    engine.rows().insert(std::vector{entry_});
  }
  is_begun_ = true;
}

bool Pass_History::differs(const Pass_Ending& ending) const {
  return is_begun_ || digest_of_errors(ending.errors) != last_.errors;
}

void Pass_History::finish(Engine& engine, const Changes& changes, const Pass_Ending& ending,
                          const Document_Digests& documents,
                          const std::set<std::uint64_t>& reconciled) {
  if (!is_begun_) {
    begin(engine);
  }
  note_changes(changes, entry_);
  const bool kept_documents = keep_documents(engine, documents);
  const bool kept_errors = keep_errors(engine, ending);
  entry_.status = status_of(ending);
  entry_.reconciled = ranges_of(reconciled);
  engine.rows().put(std::vector{entry_});
  give_up_the_oldest(engine.odb(), entry_.pass, kept_documents || kept_errors);
}

/// Copied within the database. True if they are others than those of the pass before.
bool Pass_History::keep_documents(Engine& engine, const Document_Digests& documents) {
  entry_.config = documents.config;
  entry_.mapping = documents.mapping;
  if (documents.config == last_.config && documents.mapping == last_.mapping) {
    return false;
  }
  engine.odb().execute(fmt::format(
      "INSERT INTO history_text (digest, size, text) SELECT CASE kind WHEN 'config' THEN '{}' ELSE "
      "'{}' END, length(text), text FROM document WHERE length(text) <= {} ON CONFLICT DO NOTHING",
      documents.config.value_or(""), documents.mapping.value_or(""), most_bytes_of_history_texts));
  return true;
}

/// True if they are others than those of the pass before.
bool Pass_History::keep_errors(Engine& engine, const Pass_Ending& ending) {
  const std::string text = joined_texts(ending.errors);
  entry_.error_count = ending.errors.size();
  entry_.errors = digest_of_errors(ending.errors);
  rows::History_Text row;
  if (!entry_.errors || entry_.errors == last_.errors ||
      text.size() > most_bytes_of_history_texts || engine.odb().find(*entry_.errors, row)) {
    return false;
  }
  row.digest = *entry_.errors;
  row.size = text.size();
  row.text.assign(text.begin(), text.end());
  engine.odb().persist(row);
  return true;
}

}  // namespace kuv::vemora::embedded_server
