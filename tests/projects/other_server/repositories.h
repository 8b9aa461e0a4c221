// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>

#include "vemora/platform/repositories/repository.h"

namespace other_server {

/// The records of this server, in memory: one camera and what passes store.
std::shared_ptr<kuv::vemora::Repository> make_repository();

}  // namespace other_server
