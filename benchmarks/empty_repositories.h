// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>

#include "vemora/platform/repositories/repository.h"

namespace kuv::benchmarks {

/// Repositories that hold nothing but server 1 and the triggers that they are given, and do
/// nothing: what is left is the cost of the library alone.
std::shared_ptr<vemora::Repository> make_empty_repositories();

}  // namespace kuv::benchmarks
