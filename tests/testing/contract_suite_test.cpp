// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// The contract suite on the in-memory repository, and on one with each planted fault. The latter
// has to fail, so that ctest runs it through contract_suite_catches_test.py.

#include "vemora/testing/contract_suite.h"

#include <iostream>
#include <string_view>

#include "testing/planted_faults.h"

namespace kuv::test {
namespace {

Contract_Implementation in_memory(const std::string& name, const In_Memory_Site::Plant& plant) {
  return {name, [plant](const Site_Description& site) {
            return std::make_unique<In_Memory_Site>(site, plant);
          }};
}

std::vector<Contract_Implementation> sound_implementation() {
  return {in_memory("in_memory", nullptr)};
}

/// Does without everything that is optional.
class Bare_Site : public Site_Under_Test {
 public:
  explicit Bare_Site(const Site_Description& site) : site_(site) {}

  Repository& repository() override { return site_.repository(); }

 private:
  In_Memory_Site site_;
};

std::vector<Contract_Implementation> bare_implementation() {
  return {{"in_memory",
           [](const Site_Description& site) { return std::make_unique<Bare_Site>(site); }}};
}

std::vector<Contract_Implementation> faulty_implementations() {
  std::vector<Contract_Implementation> all;
  for (const Planted_Fault& fault : planted_faults()) {
    all.push_back(in_memory(fault.name, fault.plant));
  }
  return all;
}

VEMORA_TEST_REPOSITORIES(Sound, sound_implementation())
VEMORA_TEST_REPOSITORIES(Bare, bare_implementation())
VEMORA_TEST_REPOSITORIES(Faulty, faulty_implementations())

}  // namespace
}  // namespace kuv::test

int main(int count, char** words) {
  if (count == 2 && std::string_view(words[1]) == "--list-faults") {
    for (const kuv::test::Planted_Fault& fault : kuv::test::planted_faults()) {
      std::cout << fault.name << ' ' << fault.caught_by << '\n';
    }
    return 0;
  }
  testing::InitGoogleMock(&count, words);
  return RUN_ALL_TESTS();
}
