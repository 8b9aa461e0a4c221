// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "embedded_server/persistent/database_test.h"

namespace kuv::test {

/// What an action complains about; "no complaint" when it does not.
std::string complaint_of(const std::function<void()>& action);

using Operation = std::pair<std::string, std::function<void(Repository&)>>;

/// Every operation of every repository.
std::vector<Operation> all_operations();

/// A site with a trigger on the subscription and the detection record of one of two cameras, for
/// tests of what goes wrong under it.
class Site_At_Work : public Database_Fixture {
 public:
  explicit Site_At_Work(const Database_Engine& engine);

  void given_a_trigger_at_work();

  /// Adds a trigger, and a subscription and a detection record of that camera with it.
  static void work_on_camera(Repository& repository, std::uint64_t trigger_id,
                             std::uint64_t camera_id);

  /// The next pass works, and stores what it should.
  void expect_the_next_pass_to_work();

  std::string prefixed(const std::string& text) const {
    return "database " + location() + ": " + text;
  }

  std::map<std::string, Rows> stored() { return foreign_program().everything(); }
};

}  // namespace kuv::test
