#include "tools/vemora-triggers/render/match.h"

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

void print_for_people(const Match& match) {
  std::vector<Row> rows;
  for (const Match::Trigger& trigger : match.triggers) {
    rows.push_back({std::to_string(trigger.id), printable(trigger.name)});
  }
  if (rows.empty()) {
    std::cout << "No trigger is told of it.\n";
  } else {
    print_table({"TOLD", "NAME"}, rows);
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

}  // namespace kuv::vemora::tools
