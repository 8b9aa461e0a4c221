// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>

#include "store.h"
#include "vemora/platform/repositories/repository.h"

namespace own_platform {

/// This server's repositories over its store, which they share.
std::shared_ptr<kuv::vemora::Repository> make_repository(const std::shared_ptr<Store>& store);

}  // namespace own_platform
