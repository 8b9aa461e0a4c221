#pragma once

#include <json/value.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vemora/platform/export.h"
#include "vemora/trigger_parser/trigger_parser.h"

namespace kuv::vemora::embedded_server {

/// A rejection, and where in the document it comes from, as narrow as it can be told.
struct Rejected_Part {
  std::string message;                ///< the parser's own
  const Json::Value* part = nullptr;  ///< within the document; null when it concerns no part of it
  std::optional<std::size_t> index;   ///< of the trigger or association in its array
  std::optional<std::uint64_t> id;    ///< of the trigger
};

// The parser says what is wrong first and not where. Each of these asks it, and where it rejects
// the document asks it again with smaller and smaller pieces. The first answer is what it says of
// the whole, the others are further triggers or associations that it would reject as well; none
// when it takes the document.

std::vector<Rejected_Part> rejections_of_properties(Trigger_Parser& parser,
                                                    const Json::Value& config);
std::vector<Rejected_Part> rejections_of_mapping(Trigger_Parser& parser,
                                                 const Json::Value& mapping);
std::vector<Rejected_Part> rejections_of_triggers(Trigger_Parser& parser, const Json::Value& config,
                                                  const Trigger_Mapping& mapping);

}  // namespace kuv::vemora::embedded_server
