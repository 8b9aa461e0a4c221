// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>

namespace kuv::test {

/// How often this program has asked for memory: for what must not grow faster than its input.
std::size_t allocations();

}  // namespace kuv::test
