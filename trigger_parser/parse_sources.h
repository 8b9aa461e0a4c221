#pragma once

#include <json/value.h>

#include <set>

#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora {

/// The sources of a trigger from its "sources" array; empty when each of them was dropped. Rejects
/// the document with the message of the first fault.
std::set<Trigger_Source> parse_sources(const Json::Value& sources);

}  // namespace kuv::vemora
