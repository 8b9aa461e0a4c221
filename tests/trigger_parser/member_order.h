// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>

namespace kuv::test {

/// Whether the members of one object lie in memory in the order in which they are given.
template <class First, class... Others>
bool lie_in_order(const First& first, const Others&... others) {
  const void* previous = std::addressof(first);
  const auto follows = [&previous](const void* member) {
    const bool behind = previous < member;
    previous = member;
    return behind;
  };
  return (follows(std::addressof(others)) && ...);
}

}  // namespace kuv::test
