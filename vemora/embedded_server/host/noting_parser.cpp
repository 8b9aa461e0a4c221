// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/host/noting_parser.h"

#include <utility>

namespace kuv::vemora::embedded_server {

Noting_Parser::Noting_Parser(std::shared_ptr<Repository> repository, std::uint64_t server_id,
                             const Json_Document& config, const Json_Document* mapping,
                             std::vector<Check_Fault>& faults, Judge_Parsed judge)
    : parser_(std::move(repository), server_id),
      mapping_(mapping),
      in_config_("config", &config, Located_Faults::Wanted::first, faults),
      in_mapping_("mapping", mapping, Located_Faults::Wanted::first, faults),
      judge_(std::move(judge)) {}

Trigger_Mapping Noting_Parser::parse_trigger_mapping(const Json::Value& document) {
  return parser_.parse_trigger_mapping(mapping_ != nullptr ? mapping_->value() : document,
                                       in_mapping_);
}

std::vector<Trigger_Config> Noting_Parser::parse_trigger_configs(const Json::Value& document,
                                                                 const Trigger_Mapping& mapping) {
  std::vector<Trigger_Config> triggers =
      parser_.parse_trigger_configs(document, mapping, in_config_);
  judge_(mapping, triggers);
  return triggers;
}

Notification_Properties Noting_Parser::parse_config_properties(const Json::Value& document) {
  return parser_.parse_config_properties(document, in_config_);
}

}  // namespace kuv::vemora::embedded_server
