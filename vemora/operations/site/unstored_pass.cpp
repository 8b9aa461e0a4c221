// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/site/unstored_pass.h"

#include <fmt/format.h>

#include <exception>
#include <utility>

#include "vemora/embedded_server/host/services.h"
#include "vemora/embedded_server/logging/unstored_lines.h"
#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/embedded_server/persistent/trial_repository.h"
#include "vemora/trigger_manager/vemora_trigger_manager.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora::operations {
namespace {

using embedded_server::Database_Error;

/// The parser of the pass, which leaves behind what it made of the documents.
class Keeping_Parser : public Trigger_Parser {
 public:
  Keeping_Parser(std::shared_ptr<Repository> repository, std::uint64_t server_id,
                 Unstored_Pass& kept, bool& is_done)
      : parser_(std::move(repository), server_id), kept_(kept), is_done_(is_done) {}

  Trigger_Mapping parse_trigger_mapping(const Json::Value& document) override {
    return kept_.schedules = parser_.parse_trigger_mapping(document);
  }

  std::vector<Trigger_Config> parse_trigger_configs(const Json::Value& document,
                                                    const Trigger_Mapping& mapping) override {
    kept_.triggers = parser_.parse_trigger_configs(document, mapping);
    is_done_ = true;
    return kept_.triggers;
  }

  Notification_Properties parse_config_properties(const Json::Value& document) override {
    return parser_.parse_config_properties(document);
  }

 private:
  Vemora_Trigger_Parser parser_;
  Unstored_Pass& kept_;
  bool& is_done_;
};

/// Nobody is told of a pass that is not stored.
class Deaf_Pusher : public Trigger_Notification_Pusher {
 public:
  void stop() override {}
  void apply_trigger_state(Trigger_Config_State /*state*/) override {}
};

std::vector<std::string> texts_of(const std::vector<Directive_Config_Processing::Error>& errors) {
  std::vector<std::string> texts;
  texts.reserve(errors.size());
  for (const auto& error : errors) {
    texts.push_back(error.message);
  }
  return texts;
}

}  // namespace

Unstored_Pass run_unstored_pass(const std::shared_ptr<embedded_server::Database>& database,
                                std::uint64_t server_id, const Json::Value& config,
                                const Json::Value& mapping) {
  const kuv::logging::Unstored_Lines lines;
  Unstored_Pass pass;
  bool is_parsed = false;
  const std::shared_ptr<Repository> repository = make_trial_repository(database);
  Vemora_Trigger_Manager manager(
      config, mapping, repository, std::make_shared<embedded_server::Recording_Capture_Manager>(),
      std::make_unique<Keeping_Parser>(repository, server_id, pass, is_parsed),
      std::make_shared<Deaf_Pusher>(),
      std::make_shared<embedded_server::Inventory_Meta_Type_Resolver>());
  Trigger_Config_State state;
  const bool success = manager.refresh_triggers(state);
  if (!is_parsed) {
    throw Database_Error(state.errors.empty() ? "the documents are rejected"
                                              : state.errors.front().message);
  }
  pass.records = read_site_records(database);  // throws again what the database threw in the pass
  if (!success) {
    throw Database_Error(state.errors.front().message);
  }
  pass.errors = texts_of(state.errors);
  return pass;
}

}  // namespace kuv::vemora::operations
