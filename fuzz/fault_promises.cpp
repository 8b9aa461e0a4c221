// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "fuzz/fault_promises.h"

#include <algorithm>
#include <utility>

namespace kuv::fuzz {
namespace {

using vemora::Parser_Fault;

class All_Faults : public vemora::Fault_Sink {
 public:
  bool take(Parser_Fault fault) override {
    found.push_back(std::move(fault));
    return true;
  }

  std::vector<Parser_Fault> found;
};

bool lie_within(const std::vector<Parser_Fault>& faults, std::size_t size) {
  return std::all_of(faults.begin(), faults.end(), [size](const Parser_Fault& fault) {
    return !fault.offset || *fault.offset < size;
  });
}

bool are_in_order(const std::vector<Parser_Fault>& faults) {
  return std::is_sorted(
      faults.begin(), faults.end(),
      [](const Parser_Fault& left, const Parser_Fault& right) { return left.index < right.index; });
}

std::string first_of(const std::vector<const All_Faults*>& sinks) {
  for (const All_Faults* sink : sinks) {
    if (!sink->found.empty()) {
      return sink->found.front().message;
    }
  }
  return "";
}

}  // namespace

std::vector<std::string> broken_promises_of_faults(vemora::Vemora_Trigger_Parser& parser,
                                                   const Json::Value& configuration,
                                                   const Json::Value& mapping, Text_Sizes sizes,
                                                   const std::string& rejected_with) {
  All_Faults in_properties;
  All_Faults in_mapping;
  All_Faults in_triggers;
  parser.parse_config_properties(configuration, in_properties);
  const vemora::Trigger_Mapping schedules = parser.parse_trigger_mapping(mapping, in_mapping);
  parser.parse_trigger_configs(configuration, schedules, in_triggers);

  std::vector<std::string> broken;
  // Keys of what has none are looked up before anybody asks, and the JSON library says so.
  const std::string first = first_of({&in_properties, &in_mapping, &in_triggers});
  if (configuration.isObject() ? first != rejected_with : first.empty()) {
    broken.push_back("the first fault is what the document is rejected with, and not: " + first);
  }
  if (!lie_within(in_properties.found, sizes.configuration) ||
      !lie_within(in_triggers.found, sizes.configuration) ||
      !lie_within(in_mapping.found, sizes.mapping)) {
    broken.emplace_back("faults lie within the text");
  }
  if (!are_in_order(in_mapping.found) || !are_in_order(in_triggers.found)) {
    broken.emplace_back("faults are told in the order of the document");
  }
  return broken;
}

}  // namespace kuv::fuzz
