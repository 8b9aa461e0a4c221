// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/history/pass_documents.h"

#include <fmt/format.h>

#include <utility>

#include "vemora/embedded_server/persistent/site_reader.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Database;
using embedded_server::Past_Pass;
using embedded_server::Past_Text;

constexpr const char* no_triggers = R"({"triggers": []})";
constexpr const char* no_associations = R"({"triggerMapping": []})";

std::string text_of(const Past_Text& document, const char* name, const char* empty,
                    std::uint64_t pass) {
  if (!document.was_there) {
    return empty;
  }
  if (!document.text) {
    throw Pass_Not_Kept(fmt::format("The {} of pass {} is not kept any more.", name, pass));
  }
  return *document.text;
}

[[noreturn]] void fail_without_pass(const std::shared_ptr<Database>& database, std::uint64_t pass) {
  const std::uint64_t last = embedded_server::last_pass_in_history(database);
  if (last == 0) {
    throw No_Such_Pass(fmt::format("The history has no pass {}: it is empty.", pass));
  }
  if (pass == 0 || pass > last) {
    throw No_Such_Pass(fmt::format("The history has no pass {}: the last one is {}.", pass, last));
  }
  throw Pass_Not_Kept(fmt::format("Pass {} is not kept any more: the history has the last {}.",
                                  pass, embedded_server::most_history_entries));
}

}  // namespace

Past_Pass find_past_pass(const std::shared_ptr<Database>& database, std::uint64_t pass) {
  auto found = embedded_server::read_past_pass(database, pass);
  if (!found) {
    fail_without_pass(database, pass);
  }
  return *std::move(found);
}

Document_Texts documents_of_pass(const std::shared_ptr<Database>& database, std::uint64_t pass) {
  const Past_Pass found = find_past_pass(database, pass);
  return {text_of(found.config, "configuration", no_triggers, pass),
          text_of(found.mapping, "mapping", no_associations, pass)};
}

Document_Texts documents_of_today(const std::shared_ptr<Database>& database) {
  embedded_server::Documents stored = embedded_server::read_documents(database);
  return {std::move(stored.config).value_or(no_triggers),
          std::move(stored.mapping).value_or(no_associations)};
}

}  // namespace kuv::vemora::operations
