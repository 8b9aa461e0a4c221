// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/value.h>

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "embedded_server/persistent/database_test.h"
#include "support/json.h"
#include "support/log_capture.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"

namespace kuv::test {

/// Remembers whose streams were reconciled; fails for the cameras it is told to.
class Recording_Capture_Manager : public capture::Manager {
 public:
  void reconcile_metadata_stream(std::uint64_t camera_id) override;

  std::vector<std::uint64_t> reconciled;
  std::set<std::uint64_t> failing;
};

/// Remembers the last state it was given; fails when it is told to.
class Recording_Pusher : public Trigger_Notification_Pusher {
 public:
  void stop() override {}
  void apply_trigger_state(Trigger_Config_State state) override;

  std::optional<Trigger_Config_State> state;
  bool failing = false;
};

/// Knows the leaves that general names stand for.
class Plain_Resolver : public Meta_Type_Resolver {
 public:
  std::vector<std::string> resolve(const std::vector<std::string>& types) override;

  std::map<std::string, std::vector<std::string>> leaves;
  bool failing = false;
};

/// What came of one call of the trigger manager.
struct Outcome {
  bool success = false;
  std::vector<std::string> errors;            ///< "category: text"
  std::optional<Trigger_Config_State> state;  ///< what the pusher got; nothing when it got none
  std::vector<std::uint64_t> reconciled;      ///< in the order of the calls
  Changes changes;                            ///< of the database
  std::set<std::uint64_t> pending;            ///< cameras that are still to be reconciled
  std::string exception;                      ///< of update_trigger_mapping
  std::string lost;                           ///< why the database kept nothing of the pass
};

/// A state as lines of text, one fact each, in the order of the members.
std::vector<std::string> lines_of(const std::optional<Trigger_Config_State>& state);

/// A server around a trigger manager: real parser, real repositories, one pass a call.
class Server_Around : public Database_Fixture {
 public:
  explicit Server_Around(const Database_Engine& engine);
  ~Server_Around();

  // Each is one pass, which notes what was reconciled.
  Outcome update_config(const Json::Value& config);
  Outcome update_config(const std::string& config) { return update_config(json(config)); }
  Outcome update_config(const char* config) { return update_config(json(config)); }
  Outcome update_mapping(const Json::Value& mapping);
  Outcome update_mapping(const std::string& mapping) { return update_mapping(json(mapping)); }
  Outcome update_mapping(const char* mapping) { return update_mapping(json(mapping)); }
  Outcome refresh();

  /// Starts anew with the documents of the manager before; everything else comes from the database.
  void restart();

  Vemora_Trigger_Manager& manager();

  // What the database holds, read by another program: one line each, without record ids.
  std::vector<std::string> topic_subscriptions();    ///< "camera 10 topic a: 7 8"
  std::vector<std::string> generic_subscriptions();  ///< "subscription 100: 7"
  std::vector<std::string> detections();             ///< "camera 10: 7"
  std::vector<std::string> stored_triggers();        ///< as text_of

  std::map<std::string, Rows> stored() { return foreign_program().everything(); }

  std::shared_ptr<Recording_Capture_Manager> capture_manager;
  std::shared_ptr<Recording_Pusher> pusher;
  std::shared_ptr<Plain_Resolver> resolver;

 private:
  template <class Call>
  Outcome one_pass(Call call);

  Json::Value config_;
  Json::Value mapping_;
  std::unique_ptr<Vemora_Trigger_Manager> manager_;
};

/// A test of whole passes, on every engine. What is logged stays off the terminal.
class Whole_Pass_Test : public testing::TestWithParam<Database_Engine>, public Server_Around {
 protected:
  Whole_Pass_Test() : Server_Around(GetParam()) { site.given_server(server_id); }

  Log_Capture log;
};

}  // namespace kuv::test
