// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// Makes the same calls as often as it is told to, so that the instructions of one can be counted
// from the difference of two runs: see scripts/bench.
//
//     repeated_calls refresh|log-off|log-below COUNT      a refresh is of a thousand triggers

#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <string>

#include "benchmarks/empty_repositories.h"
#include "benchmarks/idle_services.h"
#include "vemora/embedded_server/logging/console.h"
#include "vemora/platform/logging/source.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::benchmarks {
namespace {

using namespace vemora;
using kuv::logging::severity_level;

/// With sources of three kinds.
Json::Value make_trigger(int id) {
  Json::Value trigger;
  trigger["id"] = id;
  trigger["name"] = "Somebody at the gate";
  trigger["tags"]["camera"]["area"] = "gate";
  trigger["sources"][0]["type"] = "onvif-metadata";
  trigger["sources"][0]["onvifTopic"] = "tns1:RuleEngine/LineDetector/Crossed";
  trigger["sources"][1]["type"] = "metadata-event";
  trigger["sources"][2]["type"] = "object-detection";
  trigger["sources"][2]["searchItem"]["type"] = "person";
  return trigger;
}

Json::Value make_config() {
  Json::Value config;
  for (int id = 1; id <= 1000; ++id) {
    config["triggers"].append(make_trigger(id));
  }
  return config;
}

/// Passes over repositories that do nothing; one before them makes the triggers' records.
void refresh(int count) {
  const auto repositories = make_empty_repositories();
  Vemora_Trigger_Manager manager(
      make_config(), Json::Value(), repositories, std::make_shared<Idle_Capture_Manager>(),
      std::make_unique<Vemora_Trigger_Parser>(repositories, 1),
      std::make_shared<Discarding_Pusher>(), std::make_shared<Plain_Resolver>());
  for (int time = 0; time <= count; ++time) {
    if (!manager.refresh_triggers()) {
      throw std::runtime_error("a pass failed");
    }
  }
}

void log_with(std::optional<severity_level> least, int count) {
  kuv::logging::log_to(std::cerr, least);
  kuv::logging::Source source("Benchmark");
  for (int time = 0; time < count; ++time) {
    source.log(severity_level::info, "trigger {} of {}", time, "gate");
  }
}

int run(const std::string& call, int count) {
  kuv::logging::log_to(std::cerr, std::nullopt);
  if (call == "refresh") {
    refresh(count);
  } else if (call == "log-off") {
    log_with(std::nullopt, count);
  } else if (call == "log-below") {
    log_with(severity_level::error, count);
  } else {
    std::cerr << "repeated_calls refresh|log-off|log-below COUNT\n";
    return 64;
  }
  return 0;
}

}  // namespace
}  // namespace kuv::benchmarks

int main(int count, char** arguments) {
  return kuv::benchmarks::run(count > 1 ? arguments[1] : "",
                              count > 2 ? std::atoi(arguments[2]) : 0);
}
