#pragma once

#include "vemora/platform/records/trigger.h"

namespace kuv::vemora::embedded_server {

/// Whether the database would hold the same of both: stricter than the orderings of their sets,
/// which pass over motion flags and durations.
bool same_values(const trigger& left, const trigger& right);

}  // namespace kuv::vemora::embedded_server
