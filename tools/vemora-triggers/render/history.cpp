// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/history.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <json/value.h>

#include <ctime>
#include <iostream>
#include <set>
#include <string>

#include "tools/vemora-triggers/render/change_counts.h"
#include "tools/vemora-triggers/render/counted.h"
#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::History_Entry;
using embedded_server::Past_Pass;
using embedded_server::Past_Text;
using embedded_server::printable;
using Status = History_Entry::Status;

const std::set<std::size_t> counts_of_records{6, 7,
                                              8};  ///< columns that a single pass shows as well

std::string time_of(const History_Entry& entry, const char* form) {
  std::tm parts{};
  const auto seconds = static_cast<std::time_t>(entry.at);
  return ::gmtime_r(&seconds, &parts) == nullptr ? "?" : fmt::format(fmt::runtime(form), parts);
}

Json::Value ids_to_json(const std::set<std::uint64_t>& ids) {
  Json::Value list(Json::arrayValue);
  for (const std::uint64_t id : ids) {
    list.append(Json::UInt64(id));
  }
  return list;
}

Json::Value text_to_json(const std::optional<std::string>& text) {
  return text ? Json::Value(*text) : Json::Value();
}

Json::Value to_json(const History_Entry& entry) {
  Json::Value object(Json::objectValue);
  object["pass"] = Json::UInt64(entry.pass);
  object["at"] = time_of(entry, "{:%Y-%m-%dT%H:%M:%SZ}");
  object["by"] = text_to_json(entry.by);
  object["command"] = entry.command;
  object["note"] = text_to_json(entry.note);
  object["success"] = entry.status == Status::done;
  if (entry.status == Status::cut_short) {
    object["cutShort"] = true;
  }
  object["errors"] = Json::UInt64(entry.errors);
  object["changes"] = counts_to_json(entry.changes);
  object["triggers"]["created"] = ids_to_json(entry.triggers_created);
  object["triggers"]["changed"] = ids_to_json(entry.triggers_changed);
  object["triggers"]["deleted"] = ids_to_json(entry.triggers_deleted);
  object["reconciled"] = ids_to_json(entry.reconciled);
  return object;
}

Json::Value to_json(const Past_Pass& past) {
  Json::Value object = to_json(past.entry);
  object["config"] = text_to_json(past.config.text);
  object["mapping"] = text_to_json(past.mapping.text);
  if (past.entry.errors != 0) {
    object["errorTexts"] = past.errors ? Json::Value(Json::arrayValue) : Json::Value();
    for (const std::string& text : past.errors.value_or(std::vector<std::string>())) {
      object["errorTexts"].append(text);
    }
  }
  return object;
}

std::string result_of(const History_Entry& entry) {
  switch (entry.status) {
    case Status::cut_short:
      return "cut short";
    case Status::failed:
      return "failed";
    case Status::done:
      break;
  }
  return entry.errors == 0 ? "done"
                           : fmt::format("done, {}", counted(entry.errors, "error", "errors"));
}

/// "+2 ~1 -0"; empty if nothing changed.
std::string trigger_counts(const History_Entry& entry) {
  if (entry.triggers_created.empty() && entry.triggers_changed.empty() &&
      entry.triggers_deleted.empty()) {
    return {};
  }
  return fmt::format("+{} ~{} -{}", entry.triggers_created.size(), entry.triggers_changed.size(),
                     entry.triggers_deleted.size());
}

/// "+2 -0"; empty if nothing changed.
std::string signed_counts(const embedded_server::Change_Counts::Of& count) {
  return count.empty() ? std::string() : fmt::format("+{} -{}", count.written, count.deleted);
}

Row row_of(const History_Entry& entry) {
  return {std::to_string(entry.pass),
          time_of(entry, "{:%Y-%m-%d %H:%M:%S}"),
          printable(entry.by.value_or("")),
          printable(entry.command),
          result_of(entry),
          trigger_counts(entry),
          signed_counts(entry.changes.subscriptions),
          signed_counts(entry.changes.detection),
          entry.reconciled.empty() ? "" : std::to_string(entry.reconciled.size()),
          printable(entry.note.value_or(""))};
}

void print_ids(const char* what, const std::set<std::uint64_t>& ids) {
  if (!ids.empty()) {
    print_folded(fmt::format("{}: {}", what, fmt::join(ids, ", ")));
  }
}

void print_errors(const Past_Pass& past) {
  if (!past.errors) {
    std::cout << counted(past.entry.errors, "error", "errors")
              << ", of which the texts are not kept any more\n";
    return;
  }
  for (const std::string& text : *past.errors) {
    std::cout << in_red("error: ") << printable(text) << '\n';
  }
}

std::string size_of(const Past_Text& document) {
  if (!document.was_there) {
    return "none";
  }
  return document.text ? counted(document.text->size(), "byte", "bytes") : "not kept any more";
}

const char* headline(const History_Entry& entry) {
  switch (entry.status) {
    case Status::cut_short:
      return "Cut short: its records were stored, its documents were not, and how it would have "
             "ended is not known.";
    case Status::failed:
      return "Failed.";
    case Status::done:
      break;
  }
  return entry.errors == 0 ? "Done." : "Done, with errors.";
}

void print_for_people(const Past_Pass& past) {
  const History_Entry& entry = past.entry;
  std::cout << fmt::format("Pass {}: {}, begun {} UTC by {}\n", entry.pass,
                           printable(entry.command), time_of(entry, "{:%Y-%m-%d %H:%M:%S}"),
                           entry.by ? printable(*entry.by) : "an unknown user");
  if (entry.note) {
    std::cout << "Note: " << printable(*entry.note) << '\n';
  }
  print_errors(past);
  print_ids("Triggers created", entry.triggers_created);
  print_ids("Triggers changed", entry.triggers_changed);
  print_ids("Triggers deleted", entry.triggers_deleted);
  if (!entry.changes.empty()) {
    print_changed(entry.changes);
  }
  print_ids("Cameras reconciled", entry.reconciled);
  std::cout << fmt::format("Stored after it: configuration: {}; mapping: {}\n",
                           size_of(past.config), size_of(past.mapping));
  std::cout << headline(entry) << '\n';
}

}  // namespace

void print_history(const Options& options, const std::vector<History_Entry>& entries) {
  if (options.json) {
    Json::Value list(Json::arrayValue);
    for (const History_Entry& entry : entries) {
      list.append(to_json(entry));
    }
    return print_json(list);
  }
  if (entries.empty()) {
    std::cout << "No pass has changed anything yet.\n";
    return;
  }
  std::vector<Row> rows;
  rows.reserve(entries.size());
  for (const History_Entry& entry : entries) {
    rows.push_back(row_of(entry));
  }
  print_table({"PASS", "BEGUN (UTC)", "BY", "COMMAND", "RESULT", "TRIGGERS", "SUBSCRIPTIONS",
               "DETECTION", "RECONCILED", "NOTE"},
              rows, counts_of_records);
}

void print_past_pass(const Options& options, const Past_Pass& past) {
  if (options.json) {
    print_json(to_json(past));
  } else {
    print_for_people(past);
  }
}

}  // namespace kuv::vemora::tools
