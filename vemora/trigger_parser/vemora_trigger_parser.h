// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "vemora/platform/export.h"
#include "vemora/platform/logging/source.h"
#include "vemora/platform/repositories/repository.h"
#include "vemora/platform/tags/tag_info.h"
#include "vemora/trigger_parser/parser_fault.h"
#include "vemora/trigger_parser/trigger_parser.h"

namespace kuv::vemora {

class Faults;
class Source_Types;

/// The parser of the video-management server. It keeps nothing between calls: schedules and the
/// server's tags are looked up anew each time. Not thread-safe.
class VEMORA_API Vemora_Trigger_Parser : public Trigger_Parser {
 public:
  /// A parser for the server of that id. Looks nothing up: a null repository or an unknown id shows
  /// when a document is parsed, as Internal_Error<std::logic_error>: in every configuration, and
  /// a null repository also in a mapping that names a schedule.
  Vemora_Trigger_Parser(std::shared_ptr<Repository> repository, std::uint64_t server_id);
  ~Vemora_Trigger_Parser() override;

  Trigger_Mapping parse_trigger_mapping(const Json::Value& document) override;
  std::vector<Trigger_Config> parse_trigger_configs(const Json::Value& document,
                                                    const Trigger_Mapping& mapping) override;
  Notification_Properties parse_config_properties(const Json::Value& document) override;

  /// The same with a sink, which hears of every fault of the document as long as it wants to. After
  /// a fault the result must not be used. A configuration that is no object is a fault of its
  /// properties too. Errors of the database are thrown as without a sink, and so is
  /// std::bad_alloc.
  ///@{
  Trigger_Mapping parse_trigger_mapping(const Json::Value& document, Fault_Sink& sink);
  std::vector<Trigger_Config> parse_trigger_configs(const Json::Value& document,
                                                    const Trigger_Mapping& mapping,
                                                    Fault_Sink& sink);
  Notification_Properties parse_config_properties(const Json::Value& document, Fault_Sink& sink);
  ///@}

 private:
  Trigger_Mapping parse_trigger_mapping_(const Json::Value& document, Faults& faults);
  std::vector<Trigger_Config> parse_trigger_configs_(const Json::Value& document,
                                                     const Trigger_Mapping& mapping,
                                                     Faults& faults);
  Notification_Properties parse_config_properties_(const Json::Value& document, Faults& faults);

  /// The server's tags as the database holds them now.
  std::map<std::string, Tag_Info> get_latest_server_tags_(Faults& faults);

  /// One element of "triggers"; nothing when no source of it is left.
  std::optional<Trigger_Config> parse_trigger_config_(const Json::Value& trigger,
                                                      const Trigger_Mapping& mapping,
                                                      Source_Types& types, Faults& faults);
  /// With the value of the trigger's "scheduleIds", null where it has none.
  void set_trigger_mapping_in_config_(Trigger_Config& config, const Json::Value& schedule_ids,
                                      const Trigger_Mapping& mapping, Faults& faults);

  /// The schedules under "scheduleIds" of an object; empty when one of them cannot be used.
  std::optional<std::set<Trigger_Mapping_Entry>> parse_mapping_entries_(const Json::Value& object,
                                                                        Faults& faults);
  std::optional<std::set<Trigger_Mapping_Entry>> parse_schedule_ids_array_(
      const Json::Value& schedule_ids, Faults& faults);

  kuv::logging::Source logger_;
  std::shared_ptr<Repository> repository_;
  std::uint64_t server_id_;
};

}  // namespace kuv::vemora
