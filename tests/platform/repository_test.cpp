// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/repositories/repository.h"

#include <gmock/gmock.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "vemora/platform/errors/vemora_error.h"
#include "vemora/testing/mocks/mock_repository.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora;

TEST(Repository_Facade, answers_the_seven_that_it_was_constructed_with) {
  const Mock_Repository parts;
  Repository& repository = *parts.repository;

  EXPECT_EQ(&repository.cameras(), &parts.cameras);
  EXPECT_EQ(&repository.servers(), &parts.servers);
  EXPECT_EQ(&repository.metadata_event_categories(), &parts.categories);
  EXPECT_EQ(&repository.metadata_event_subscriptions(), &parts.subscriptions);
  EXPECT_EQ(&repository.triggers(), &parts.triggers);
  EXPECT_EQ(&repository.schedules(), &parts.schedules);
  EXPECT_EQ(&repository.eta_cameras(), &parts.eta_cameras);
}

TEST(Repository_Facade, takes_null_pointers_and_names_what_is_missing_when_it_is_asked_for) {
  Repository empty(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  const std::vector<std::pair<std::function<void()>, std::string>> table{
      {[&] { empty.cameras(); }, "a camera repository"},
      {[&] { empty.servers(); }, "a server repository"},
      {[&] { empty.metadata_event_categories(); }, "a metadata event category repository"},
      {[&] { empty.metadata_event_subscriptions(); }, "a metadata event subscription repository"},
      {[&] { empty.triggers(); }, "a trigger repository"},
      {[&] { empty.schedules(); }, "a schedule repository"},
      {[&] { empty.eta_cameras(); }, "an ETA camera repository"},
  };
  for (const auto& [ask, missing] : table) {
    try {
      ask();
      ADD_FAILURE() << missing << " was not missed";
    } catch (const Internal_Error<std::logic_error>& error) {
      EXPECT_EQ(error.what(), "The repository was constructed without " + missing);
      EXPECT_EQ(error.error_code, -2);
    }
  }
}

}  // namespace
}  // namespace kuv::test
