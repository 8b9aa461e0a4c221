// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>

namespace kuv::benchmarks {

/// Counts the statements on every SQLite database that the process opens from now on.
void meter_statements();

/// How many began to run so far.
std::size_t statements_so_far();

}  // namespace kuv::benchmarks
