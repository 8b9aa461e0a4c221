// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "vemora/embedded_server/host/located_faults.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::vemora::embedded_server {

/// Receives what was parsed without a fault.
using Judge_Parsed =
    std::function<void(const Trigger_Mapping& schedules, const std::vector<Trigger_Config>&)>;

/// The parser of a pass. It throws what the parser throws, and records the fault with its location.
/// What is parsed without a fault is passed to a function.
class Noting_Parser : public Trigger_Parser {
 public:
  /// Appends faults to `faults`, which must outlive the parser. If a mapping is given, this
  /// document is parsed, not what the manager made of it: the manager adds what is missing, and in
  /// a new document nothing may be missing.
  Noting_Parser(std::shared_ptr<Repository> repository, std::uint64_t server_id,
                const Json_Document& config, const Json_Document* mapping,
                std::vector<Check_Fault>& faults, Judge_Parsed judge);

  Trigger_Mapping parse_trigger_mapping(const Json::Value& document) override;
  std::vector<Trigger_Config> parse_trigger_configs(const Json::Value& document,
                                                    const Trigger_Mapping& mapping) override;
  Notification_Properties parse_config_properties(const Json::Value& document) override;

 private:
  Vemora_Trigger_Parser parser_;
  const Json_Document* mapping_;
  Located_Faults in_config_;
  Located_Faults in_mapping_;
  Judge_Parsed judge_;
};

}  // namespace kuv::vemora::embedded_server
