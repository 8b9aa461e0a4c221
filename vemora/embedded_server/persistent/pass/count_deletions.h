// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/embedded_server/persistent/deletions.h"
#include "vemora/embedded_server/persistent/index/site_index.h"

namespace kuv::vemora::embedded_server {

/// What these net changes delete, and of how many records that were stored before them. The site
/// has them already.
Deletions deletions_of(const Site_Index::Net_Changes& net, Site_Index& site);

}  // namespace kuv::vemora::embedded_server
