// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "system/passes/whole_pass_test.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <stdexcept>

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::test {
namespace {

std::string text_of(const Object_Search_Item& item) {
  return item.object_type + (item.motion_required ? " in motion" : "");
}

template <class Duration>
std::string text_of(const char* name, const std::optional<Duration>& duration) {
  return duration ? fmt::format("{} {} ms", name, duration->count()) : std::string();
}

std::uint64_t id_in(const std::optional<std::string>& cell) {
  return static_cast<std::uint64_t>(std::stoll(cell.value()));
}

/// Rows of what a record is called by and one trigger, as a line a record.
std::vector<std::string> grouped(const Rows& rows, std::string (*name_of)(const Row&)) {
  std::map<std::string, std::set<std::uint64_t>> triggers;
  for (const Row& row : rows) {
    std::set<std::uint64_t>& held = triggers[name_of(row)];
    if (row.back()) {
      held.insert(id_in(row.back()));
    }
  }
  std::vector<std::string> lines;
  for (const auto& [name, ids] : triggers) {
    lines.push_back(fmt::format("{}:{}{}", name, ids.empty() ? "" : " ", fmt::join(ids, " ")));
  }
  return lines;
}

}  // namespace

void Recording_Capture_Manager::reconcile_metadata_stream(std::uint64_t camera_id) {
  if (failing.count(camera_id) != 0) {
    throw std::runtime_error("the camera does not answer");
  }
  reconciled.push_back(camera_id);
}

void Recording_Pusher::apply_trigger_state(Trigger_Config_State given) {
  if (failing) {
    throw std::runtime_error("the queue is full");
  }
  state = std::move(given);
}

std::vector<std::string> Plain_Resolver::resolve(const std::vector<std::string>& types) {
  if (failing) {
    throw std::runtime_error("no such type");
  }
  std::vector<std::string> resolved;
  for (const std::string& type : types) {
    const auto general = leaves.find(type);
    if (general == leaves.end()) {
      resolved.push_back(type);
    } else {
      resolved.insert(resolved.end(), general->second.begin(), general->second.end());
    }
  }
  return resolved;
}

std::vector<std::string> lines_of(const std::optional<Trigger_Config_State>& state) {
  std::vector<std::string> lines;
  if (!state) {
    return {"no state"};
  }
  for (const auto& [id, options] : state->applied_triggers) {
    lines.push_back(fmt::format("{} applied{}", id, options.any_time ? " at any time" : ""));
  }
  for (const auto& [id, cameras] : state->onvif_topics_by_trigger) {
    for (const auto& [camera_id, topics] : cameras) {
      lines.push_back(fmt::format("{} camera {} topics {}", id, camera_id, fmt::join(topics, " ")));
    }
  }
  for (const Directive_Config_Processing::Error& error : state->errors) {
    lines.push_back("error " + error.message);
  }
  for (const auto& [id, subscriptions] : state->subscriptions_by_trigger) {
    lines.push_back(fmt::format("{} subscriptions {}", id, fmt::join(subscriptions, " ")));
  }
  for (const auto& [id, cameras] : state->search_items_by_trigger) {
    for (const auto& [camera_id, items] : cameras) {
      std::vector<std::string> texts;
      for (const Object_Search_Item& item : items) {
        texts.push_back(text_of(item));
      }
      lines.push_back(
          fmt::format("{} camera {} searches {}", id, camera_id, fmt::join(texts, ", ")));
    }
  }
  const Notification_Properties& properties = state->properties;
  for (const std::string& text : {text_of("max latency", properties.max_latency),
                                  text_of("digest cooldown", properties.digest_cooldown),
                                  text_of("ack timeout", properties.ack_timeout),
                                  text_of("nack delay", properties.nack_delay)}) {
    if (!text.empty()) {
      lines.push_back(text);
    }
  }
  return lines;
}

Server_Around::Server_Around(const Database_Engine& engine)
    : Database_Fixture(engine),
      capture_manager(std::make_shared<Recording_Capture_Manager>()),
      pusher(std::make_shared<Recording_Pusher>()),
      resolver(std::make_shared<Plain_Resolver>()) {}

Server_Around::~Server_Around() = default;

Vemora_Trigger_Manager& Server_Around::manager() {
  if (!manager_) {
    const auto repository = make_repository(database());
    manager_ = std::make_unique<Vemora_Trigger_Manager>(
        config_, mapping_, repository, capture_manager,
        std::make_unique<Vemora_Trigger_Parser>(repository, server_id), pusher, resolver);
  }
  return *manager_;
}

void Server_Around::restart() {
  config_ = manager().get_config();
  mapping_ = manager().get_trigger_mapping();
  manager_.reset();
  close();
}

template <class Call>
Outcome Server_Around::one_pass(Call call) {
  manager();
  capture_manager->reconciled.clear();
  pusher->state.reset();
  Outcome outcome;
  Pass_Scope pass(database(), server_id);
  call(outcome);
  try {
    pass.end();
  } catch (const Database_Error& error) {
    outcome.lost = error.what();
  }
  const std::set<std::uint64_t> reconciled(capture_manager->reconciled.begin(),
                                           capture_manager->reconciled.end());
  outcome.state = pusher->state;
  outcome.reconciled = capture_manager->reconciled;
  outcome.changes = pass.changes();
  if (!pass.fault()) {
    pass.store({}, reconciled);
    outcome.pending = pass.pending_cameras();
  }
  return outcome;
}

Outcome Server_Around::update_config(const Json::Value& config) {
  return one_pass([&](Outcome& outcome) {
    const auto result = manager().update_config(config);
    outcome.success = result.success;
    for (const Directive_Config_Processing::Error& error : result.errors) {
      outcome.errors.push_back(
          fmt::format("{}: {}", static_cast<int>(error.category), error.message));
    }
  });
}

Outcome Server_Around::update_mapping(const Json::Value& mapping) {
  return one_pass([&](Outcome& outcome) {
    try {
      manager().update_trigger_mapping(mapping);
      outcome.success = true;
    } catch (const std::exception& error) {
      outcome.exception = error.what();
    }
  });
}

Outcome Server_Around::refresh() {
  return one_pass([&](Outcome& outcome) {
    Trigger_Config_State state;
    outcome.success = manager().refresh_triggers(state);
    for (const Directive_Config_Processing::Error& error : state.errors) {
      outcome.errors.push_back(
          fmt::format("{}: {}", static_cast<int>(error.category), error.message));
    }
  });
}

std::vector<std::string> Server_Around::topic_subscriptions() {
  return grouped(foreign_program().query("SELECT camera_id, onvif_topic, linked_id "
                                         "FROM subscription LEFT JOIN subscription_trigger "
                                         "ON record_id = id WHERE camera_id IS NOT NULL"),
                 [](const Row& row) {
                   return fmt::format("camera {} topic {}", id_in(row.at(0)),
                                      row.at(1).value_or("none"));
                 });
}

std::vector<std::string> Server_Around::generic_subscriptions() {
  return grouped(foreign_program().query("SELECT id, linked_id FROM subscription "
                                         "LEFT JOIN subscription_trigger ON record_id = id "
                                         "WHERE camera_id IS NULL"),
                 [](const Row& row) { return fmt::format("subscription {}", id_in(row.at(0))); });
}

std::vector<std::string> Server_Around::detections() {
  return grouped(foreign_program().query("SELECT camera_id, linked_id FROM eta_camera "
                                         "LEFT JOIN eta_camera_trigger ON record_id = id"),
                 [](const Row& row) { return fmt::format("camera {}", id_in(row.at(0))); });
}

std::vector<std::string> Server_Around::stored_triggers() {
  return texts_of(read_triggers(open_again()));
}

}  // namespace kuv::test
