// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/history/give_up_the_oldest.h"

#include <fmt/format.h>

#include <odb/database.hxx>
#include <string>

namespace kuv::vemora::embedded_server {
namespace {

/// A text is as old as the newest entry that names it. Those are kept which, with all newer ones,
/// are within the bound.
constexpr const char* texts_within_the_bound =
    "WITH named AS ("
    "SELECT config AS digest, pass FROM history_entry UNION ALL "
    "SELECT mapping, pass FROM history_entry UNION ALL "
    "SELECT errors, pass FROM history_entry), "
    "dated AS ("
    "SELECT history_text.digest, size, max(pass) AS pass FROM history_text "
    "JOIN named ON named.digest = history_text.digest GROUP BY history_text.digest, size), "
    "summed AS ("
    "SELECT digest, sum(size) OVER (ORDER BY pass DESC, digest) AS total FROM dated) "
    "SELECT digest FROM summed WHERE total <= {}";

}  // namespace

void give_up_the_oldest(odb::database& database, std::uint64_t last_pass, bool has_new_texts,
                        std::size_t most_bytes) {
  const bool has_too_many = last_pass > most_history_entries;
  if (has_too_many) {
    database.execute(fmt::format("DELETE FROM history_entry WHERE pass <= {}",
                                 last_pass - most_history_entries));
  }
  if (has_too_many || has_new_texts) {
    const std::string within = fmt::format(fmt::runtime(texts_within_the_bound), most_bytes);
    database.execute(fmt::format("DELETE FROM history_text WHERE digest NOT IN ({})", within));
  }
}

}  // namespace kuv::vemora::embedded_server
