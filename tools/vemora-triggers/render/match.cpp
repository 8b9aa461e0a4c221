// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/match.h"

#include <fmt/format.h>
#include <json/value.h>

#include <iostream>
#include <string>
#include <vector>

#include "tools/vemora-triggers/render/counted.h"
#include "tools/vemora-triggers/render/json.h"
#include "tools/vemora-triggers/render/reasons.h"
#include "tools/vemora-triggers/render/terminal.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::printable;
using operations::Changed_Listening;
using operations::Event_Counts;
using operations::Match;
using Row = std::vector<std::string>;

Json::Value to_json(const Match& match) {
  Json::Value object(Json::objectValue);
  object["triggers"] = Json::Value(Json::arrayValue);
  for (const Match::Trigger& trigger : match.triggers) {
    object["triggers"].append(Json::UInt64(trigger.id));
  }
  object["nearMisses"] = Json::Value(Json::arrayValue);
  for (const Match::Near_Miss& near_miss : match.near_misses) {
    Json::Value entry(Json::objectValue);
    entry["id"] = Json::UInt64(near_miss.trigger.id);
    entry["reasons"] = reasons_to_json(near_miss.reasons);
    object["nearMisses"].append(entry);
  }
  return object;
}

Json::Value to_json(const Event_Counts& counts) {
  Json::Value object(Json::objectValue);
  object["events"] = Json::UInt64(counts.events);
  object["unheard"] = Json::UInt64(counts.unheard);
  object["triggers"] = Json::Value(Json::objectValue);
  for (const auto& [id, count] : counts.triggers) {
    object["triggers"][std::to_string(id)] = Json::UInt64(count);
  }
  return object;
}

Json::Value to_json(const std::vector<Changed_Listening>& changed) {
  Json::Value list(Json::arrayValue);
  for (const Changed_Listening& change : changed) {
    Json::Value entry(Json::objectValue);
    entry["trigger"] = Json::UInt64(change.trigger_id);
    if (change.camera_id) {
      entry["camera"] = Json::UInt64(*change.camera_id);
    } else {
      entry["subscription"] = Json::UInt64(*change.subscription_id);
    }
    entry["events"] = Json::UInt64(change.events);
    entry["reasons"] = reasons_to_json(change.reasons);
    list.append(entry);
  }
  return list;
}

void print_changes(const char* heading, const std::vector<Changed_Listening>& changed) {
  std::vector<Row> rows;
  rows.reserve(changed.size());
  for (const Changed_Listening& change : changed) {
    rows.push_back({std::to_string(change.trigger_id),
                    change.camera_id ? fmt::format("camera {}", *change.camera_id)
                                     : fmt::format("subscription {}", *change.subscription_id),
                    std::to_string(change.events), described(change.reasons)});
  }
  if (!rows.empty()) {
    std::cout << '\n';
    print_table({heading, "FROM", "EVENTS", "WHY"}, rows);
  }
}

void print_for_people(const Match& match) {
  std::vector<Row> rows;
  for (const Match::Trigger& trigger : match.triggers) {
    rows.push_back({std::to_string(trigger.id), printable(trigger.name)});
  }
  if (rows.empty()) {
    std::cout << "No trigger is told of it.\n";
  } else {
    print_table({"TOLD", "NAME"}, rows);
    if (match.unexpected) {
      std::cout << "They would be, but: " << printable(match.unexpected->text) << '\n';
    }
  }
  rows.clear();
  for (const Match::Near_Miss& near_miss : match.near_misses) {
    rows.push_back({std::to_string(near_miss.trigger.id), printable(near_miss.trigger.name),
                    described(near_miss.reasons)});
  }
  if (!rows.empty()) {
    std::cout << '\n';
    print_table({"NOT TOLD", "NAME", "WHY"}, rows);
  }
}

void print_for_people(const Event_Counts& counts) {
  std::vector<Row> rows;
  for (const auto& [id, count] : counts.triggers) {
    rows.push_back({std::to_string(id), std::to_string(count)});
  }
  if (!rows.empty()) {
    print_table({"TRIGGER", "EVENTS"}, rows);
  }
  std::cout << counted(counts.events, "event", "events") << ", " << counts.unheard
            << " that no trigger is told of.\n";
}

}  // namespace

void print_match(const Options& options, const Match& match) {
  if (options.json) {
    print_json(to_json(match));
  } else {
    print_for_people(match);
  }
}

void print_event_counts(const Options& options, const Event_Counts& counts) {
  if (options.json) {
    print_json(to_json(counts));
  } else {
    print_for_people(counts);
  }
}

void print_compared_counts(const Options& options, const operations::Compared_Counts& compared) {
  if (options.json) {
    Json::Value object = to_json(compared.counts);
    object["gained"] = to_json(compared.gained);
    object["lost"] = to_json(compared.lost);
    print_json(object);
    return;
  }
  print_for_people(compared.counts);
  print_changes("GAINED BY", compared.gained);
  print_changes("LOST BY", compared.lost);
  if (compared.gained.empty() && compared.lost.empty()) {
    std::cout << "With the other documents the same triggers are told.\n";
  }
}

}  // namespace kuv::vemora::tools
