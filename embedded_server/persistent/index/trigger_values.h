#pragma once

#include <set>

#include "vemora/platform/records/trigger.h"

namespace kuv::vemora::embedded_server {

// Whether the database would hold the same of both: stricter than the orderings of the sets, which
// pass over motion flags and durations.

bool same_sources(const std::set<Trigger_Source>& left, const std::set<Trigger_Source>& right);
bool same_schedules(const std::set<Trigger_Mapping_Entry>& left,
                    const std::set<Trigger_Mapping_Entry>& right);
bool same_values(const trigger& left, const trigger& right);

}  // namespace kuv::vemora::embedded_server
