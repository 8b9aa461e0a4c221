// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>

#include <cstddef>
#include <string>
#include <vector>

#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::fuzz {

/// The text that the documents were read from, as far as its faults have to lie within it.
struct Text_Sizes {
  std::size_t configuration;
  std::size_t mapping;
};

/// What the parser promises of the faults that it tells, and did not keep, of documents that it
/// rejects with that text; an empty one stands for documents that it accepts.
std::vector<std::string> broken_promises_of_faults(vemora::Vemora_Trigger_Parser& parser,
                                                   const Json::Value& configuration,
                                                   const Json::Value& mapping, Text_Sizes sizes,
                                                   const std::string& rejected_with);

}  // namespace kuv::fuzz
