#pragma once

#include "trigger_parser/faults.h"
#include "vemora/trigger_parser/trigger_config.h"

namespace kuv::vemora {

/// The filters of a trigger from its "tags" object; each is empty where it is null or absent. What
/// the tags library throws for a filter reaches the caller, unless it is told to a sink.
Trigger_Config::Tags parse_tags(const Member& tags, Faults& faults);

}  // namespace kuv::vemora
