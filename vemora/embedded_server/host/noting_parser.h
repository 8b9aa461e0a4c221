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

/// The documents of a pass as they are to be parsed.
struct Parsed_Documents {
  const Json::Value& config;
  const Json::Value& mapping;
};

/// The parser of a pass. It throws what the parser throws, and records the fault with its location.
/// What is parsed without a fault is passed to a function.
///
/// It parses the documents that it is constructed with, and not what the manager has: a manager
/// keeps copies of its documents, and a large one takes as long to copy as to parse.
class Noting_Parser : public Trigger_Parser {
 public:
  /// The documents must outlive the parser.
  Noting_Parser(std::shared_ptr<Repository> repository, std::uint64_t server_id,
                const Parsed_Documents& documents, Located_Faults in_config,
                Located_Faults in_mapping, Judge_Parsed judge);

  Trigger_Mapping parse_trigger_mapping(const Json::Value&) override;
  std::vector<Trigger_Config> parse_trigger_configs(const Json::Value&,
                                                    const Trigger_Mapping& mapping) override;
  Notification_Properties parse_config_properties(const Json::Value&) override;

 private:
  Vemora_Trigger_Parser parser_;
  Parsed_Documents documents_;
  Located_Faults in_config_;
  Located_Faults in_mapping_;
  Judge_Parsed judge_;
};

}  // namespace kuv::vemora::embedded_server
