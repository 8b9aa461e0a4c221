#pragma once

#include <cstddef>

namespace kuv::benchmarks {

/// How often the process waited for the answer of a database server so far: each time that it
/// received something after it had sent something.
std::size_t round_trips_so_far();

}  // namespace kuv::benchmarks
