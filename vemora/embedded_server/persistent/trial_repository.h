// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>

#include "vemora/embedded_server/persistent/database.h"
#include "vemora/platform/export.h"
#include "vemora/platform/repositories/repository.h"

namespace kuv::vemora::embedded_server {

/// The repositories for one pass that is only tried, so that nobody is told of it. After its last
/// write, the clean-up of the detection records, get_stale() and get_all() find nothing: the state
/// that a pusher would receive, with its copies, takes several times the memory of the records.
/// What the pass did is read with site_reader.h.
VEMORA_API std::shared_ptr<Repository> make_trial_repository(
    const std::shared_ptr<Database>& database);

}  // namespace kuv::vemora::embedded_server
