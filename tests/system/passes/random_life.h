#pragma once

#include <gtest/gtest.h>

#include <string>

#include "system/passes/random_site.h"
#include "system/passes/whole_pass_test.h"

namespace kuv::test {

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
