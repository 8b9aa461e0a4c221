// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/persistent/index/links_by_record.h"

#include <gmock/gmock.h>

namespace kuv::test {
namespace {

using namespace kuv::vemora::embedded_server;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::size_t> triggers_of(const Links_By_Record& links, std::size_t record) {
  std::vector<std::size_t> triggers;
  links.for_each_trigger(record, [&triggers](std::size_t trigger) { triggers.push_back(trigger); });
  return triggers;
}

TEST(Links_By_Record, answer_the_triggers_of_each_record_as_they_came) {
  Links_By_Record links(4);
  links.add(0, 5);
  links.add(3, 5);
  links.add(1, 6);
  links.add(3, 6);
  links.add(0, 2);
  links.complete();

  EXPECT_THAT(triggers_of(links, 0), ElementsAre(5, 2));
  EXPECT_THAT(triggers_of(links, 1), ElementsAre(6));
  EXPECT_THAT(triggers_of(links, 2), IsEmpty());
  EXPECT_THAT(triggers_of(links, 3), ElementsAre(5, 6));
}

TEST(Links_By_Record, may_be_none) {
  Links_By_Record of_no_record(0);
  of_no_record.complete();
  Links_By_Record links(1);
  links.complete();

  EXPECT_THAT(triggers_of(links, 0), IsEmpty());
}

}  // namespace
}  // namespace kuv::test
