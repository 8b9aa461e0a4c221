// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "system/passes/random_site.h"
#include "system/passes/whole_pass_test.h"

namespace kuv::test {

/// How many lives a campaign has: as many as a variable of the environment says, if it is set.
inline std::uint64_t length_of_campaign(const char* variable, std::uint64_t otherwise) {
  const char* const wanted = std::getenv(variable);
  return wanted != nullptr ? std::strtoull(wanted, nullptr, 10) : otherwise;
}

/// One pass after the other, until one fails: before some of them the site changes, before some the
/// server starts anew.
template <class Restart, class Pass>
void live(int passes, Random_Site& random, Server_Around& server, Restart restart, Pass next_pass) {
  for (int number = 0; number < passes && !testing::Test::HasFailure(); ++number) {
    SCOPED_TRACE("pass " + std::to_string(number));
    if (random.one_in(3)) {
      random.change();
      server.site.store_in(server.database());
    }
    if (random.one_in(6)) {
      restart();
    }
    next_pass();
  }
}

}  // namespace kuv::test
