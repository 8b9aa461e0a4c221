// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>
#include <vector>

#include "testing/in_memory_site.h"

namespace kuv::test {

/// A mistake that somebody could make in an implementation.
struct Planted_Fault {
  std::string name;
  std::string caught_by;  ///< a test of the suite that has to fail: SUITE.TEST
  In_Memory_Site::Plant plant;
};

std::vector<Planted_Fault> planted_faults();

}  // namespace kuv::test
