// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/host/noting_parser.h"

#include <utility>

namespace kuv::vemora::embedded_server {

Noting_Parser::Noting_Parser(std::shared_ptr<Repository> repository, std::uint64_t server_id,
                             const Parsed_Documents& documents, Located_Faults in_config,
                             Located_Faults in_mapping, Judge_Parsed judge)
    : parser_(std::move(repository), server_id),
      documents_(documents),
      in_config_(std::move(in_config)),
      in_mapping_(std::move(in_mapping)),
      judge_(std::move(judge)) {}

Trigger_Mapping Noting_Parser::parse_trigger_mapping(const Json::Value&) {
  return parser_.parse_trigger_mapping(documents_.mapping, in_mapping_);
}

std::vector<Trigger_Config> Noting_Parser::parse_trigger_configs(const Json::Value&,
                                                                 const Trigger_Mapping& mapping) {
  std::vector<Trigger_Config> triggers =
      parser_.parse_trigger_configs(documents_.config, mapping, in_config_);
  judge_(mapping, triggers);
  return triggers;
}

Notification_Properties Noting_Parser::parse_config_properties(const Json::Value&) {
  return parser_.parse_config_properties(documents_.config, in_config_);
}

}  // namespace kuv::vemora::embedded_server
