// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "vemora/operations/plan/plan.h"

namespace kuv::vemora::tools {

using Named_Cameras = std::map<std::uint64_t, operations::Planned_Camera>;

/// 10 "gate north"; of a camera that the site does not have, the id alone.
std::string camera_text(const Named_Cameras& site, std::uint64_t id);

/// Cameras (ids ascending) in words. A few are named; many are told by the tags that they share:
/// "all 40 with area=gate, 12 of 20 with area=dock, 10 "lobby"".
std::string camera_list(const Named_Cameras& site, const std::vector<std::uint64_t>& ids);

}  // namespace kuv::vemora::tools
