// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>

namespace kuv::benchmarks {

/// How often the process waited for the answer of a database server so far: each time that it
/// received something after it had sent something.
std::size_t round_trips_so_far();

}  // namespace kuv::benchmarks
