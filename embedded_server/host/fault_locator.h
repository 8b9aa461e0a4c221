#pragma once

#include <json/value.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "vemora/platform/export.h"
#include "vemora/trigger_parser/trigger_parser.h"

namespace kuv::vemora::embedded_server {

/// Where in the documents a rejection comes from, as narrow as it can be told.
struct Rejected_Part {
  const Json::Value* part = nullptr;  ///< within the document; null when it concerns no part of it
  std::optional<std::size_t> index;   ///< of the trigger or association in its array
  std::optional<std::uint64_t> id;    ///< of the trigger
};

// The parser says what is wrong and not where. Each of these asks it again with smaller and smaller
// pieces of a document that it rejected with `message`, until it rejects the smallest.

Rejected_Part locate_in_properties(const Json::Value& config, const std::string& message);
Rejected_Part locate_in_mapping(Trigger_Parser& parser, const Json::Value& mapping,
                                const std::string& message);
Rejected_Part locate_in_triggers(Trigger_Parser& parser, const Json::Value& config,
                                 const Trigger_Mapping& mapping, const std::string& message);

}  // namespace kuv::vemora::embedded_server
