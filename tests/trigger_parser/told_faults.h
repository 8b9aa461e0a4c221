// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>
#include <vector>

#include "trigger_parser/fault_places.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::test {

/// Keeps what it is told, as many faults as it wants.
class Told_Faults : public vemora::Fault_Sink {
 public:
  explicit Told_Faults(std::size_t wanted = static_cast<std::size_t>(-1)) : wanted_(wanted) {}

  bool take(vemora::Parser_Fault fault) override {
    all.push_back(std::move(fault));
    return all.size() < wanted_;
  }

  std::vector<vemora::Parser_Fault> all;

 private:
  std::size_t wanted_;
};

/// Has the parser read a document as the sample says it is read.
template <class... Sink>
void read(vemora::Vemora_Trigger_Parser& parser, Fault_Sample::Read_By read_by,
          const Json::Value& document, Sink&... sink) {
  switch (read_by) {
    case Fault_Sample::Read_By::properties:
      parser.parse_config_properties(document, sink...);
      break;
    case Fault_Sample::Read_By::mapping:
      parser.parse_trigger_mapping(document, sink...);
      break;
    case Fault_Sample::Read_By::triggers:
      parser.parse_trigger_configs(document, {}, sink...);
      break;
  }
}

}  // namespace kuv::test
