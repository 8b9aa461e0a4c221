#pragma once

#include <vector>

#include "vemora/operations/match/listeners.h"
#include "vemora/operations/match/match.h"
#include "vemora/operations/site/site_view.h"

namespace kuv::vemora::operations {

/// The triggers of the stored configuration that have a source for such events and are not `told`
/// of this one, with the reasons.
std::vector<Match::Near_Miss> near_misses(const Site_View& site, const Event& event,
                                          const Listeners::Ids& told);

}  // namespace kuv::vemora::operations
