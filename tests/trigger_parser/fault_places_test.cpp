// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "trigger_parser/fault_places.h"

#include <gtest/gtest.h>

#include <memory>

#include "support/fake_repository.h"
#include "support/json.h"
#include "support/message_register.h"
#include "trigger_parser/told_faults.h"

// Where each fault is found, whatever is said of it. These tests run a second time over a parser
// and a tags library of which every message was reworded; none of them asks for a text.

namespace kuv::test {
namespace {

class Fault_Places : public testing::TestWithParam<Fault_Sample> {
 protected:
  Fault_Places() {
    database.servers.records[9] = std::make_shared<vemora::server>();
    read(parser, GetParam().read_by, json(GetParam().text), told);
  }

  Fake_Database database;
  vemora::Vemora_Trigger_Parser parser{make_fake_repository(database), 9};
  Told_Faults told;
};

TEST_P(Fault_Places, are_those_of_the_value_or_of_the_object_that_misses_it) {
  ASSERT_EQ(told.all.size(), 1);
  EXPECT_EQ(told.all[0].offset, GetParam().offset) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Each, Fault_Places, testing::ValuesIn(fault_samples()),
                         [](const auto& info) { return info.param.name; });

#ifdef VEMORA_REWORDED_MESSAGES
TEST_P(Fault_Places, are_told_in_other_words_here) {
  ASSERT_EQ(told.all.size(), 1);
  EXPECT_NE(told.all[0].message, GetParam().message);
  EXPECT_EQ(told.all[0].message.find("Reworded"), 0) << told.all[0].message;
}
#endif

}  // namespace
}  // namespace kuv::test
