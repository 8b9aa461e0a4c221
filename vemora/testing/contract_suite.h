// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

// The tests of what vemora/platform/ says of the repositories, for whoever implements them. Written
// down is what a Site_Under_Test has to do (vemora/testing/contract/implementation.h); then one
// file of a test program includes this header, once, and names the implementations:
//
//     #include "vemora/testing/contract_suite.h"
//
//     std::vector<kuv::test::Contract_Implementation> implementations() {
//       return {{"my_database", [](const kuv::test::Site_Description& site) {
//                  return std::make_unique<My_Site>(site);
//                }}};
//     }
//     VEMORA_TEST_REPOSITORIES(Mine, implementations())
//
// in the namespace that it likes, and is linked with GoogleTest, GoogleMock, their main function,
// and the server's persistence library. The tests are compiled with the program, so that they use
// its GoogleTest, its compiler and its sanitizers. docs/contract-suite.md says more.

#include "vemora/testing/contract/eta_camera_cases.h"
#include "vemora/testing/contract/in_memory_comparison.h"
#include "vemora/testing/contract/record_cases.h"
#include "vemora/testing/contract/site_record_cases.h"
#include "vemora/testing/contract/subscription_cases.h"
#include "vemora/testing/contract/trigger_cases.h"

/// Has the suite test the implementations: a container of kuv::test::Contract_Implementation.
/// `prefix` is an identifier, and begins the names of the tests.
#define VEMORA_TEST_REPOSITORIES(prefix, implementations)                                 \
  VEMORA_TEST_REPOSITORIES_BY_(prefix, Records_Contract, implementations)                 \
  VEMORA_TEST_REPOSITORIES_BY_(prefix, Site_Records_Contract, implementations)            \
  VEMORA_TEST_REPOSITORIES_BY_(prefix, Trigger_Repository_Contract, implementations)      \
  VEMORA_TEST_REPOSITORIES_BY_(prefix, Subscription_Repository_Contract, implementations) \
  VEMORA_TEST_REPOSITORIES_BY_(prefix, Subscriptions_Of_Half_A_Kind, implementations)     \
  VEMORA_TEST_REPOSITORIES_BY_(prefix, Inside_And_Outside, implementations)               \
  VEMORA_TEST_REPOSITORIES_BY_(prefix, ETA_Camera_Repository_Contract, implementations)   \
  VEMORA_TEST_REPOSITORIES_BY_(prefix, Repositories_Against_Model, implementations)

#define VEMORA_TEST_REPOSITORIES_BY_(prefix, suite, implementations)            \
  using kuv::test::suite;                                                       \
  INSTANTIATE_TEST_SUITE_P(prefix, suite, ::testing::ValuesIn(implementations), \
                           ::kuv::test::name_of_implementation);
