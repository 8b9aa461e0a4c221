// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <link.h>

#include "trigger_manager/manager_test.h"
#include "trigger_manager/scripted_site.h"

namespace kuv::test {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

/// The paths of everything that this process has loaded.
std::vector<std::string> loaded_libraries() {
  std::vector<std::string> paths;
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t /*size*/, void* found) {
        static_cast<std::vector<std::string>*>(found)->emplace_back(info->dlpi_name);
        return 0;
      },
      &paths);
  return paths;
}

TEST(Platform_Of_Stubs, is_all_that_the_trigger_manager_needs_for_a_pass) {
  const Log_Capture quiet;
  Scripted_Site site;
  const auto manager = site.a_manager(Scripted_Site::config, Scripted_Site::mapping);

  EXPECT_TRUE(manager->refresh_triggers());

  const std::vector<std::string> loaded = loaded_libraries();
  EXPECT_THAT(loaded, Contains(HasSubstr("libvemora_trigger_manager.so")));
  for (const char* library : {"libvemora_persistent.so", "libvemora_tags_json_converter.so",
                              "libkuv_logging.so", "libkuv_utils.so"}) {
    EXPECT_THAT(loaded, Contains(HasSubstr(std::string("stub_platform/") + library)).Times(1));
    EXPECT_THAT(loaded, Contains(HasSubstr(library)).Times(1));
  }
  for (const char* of_a_database : {"sqlite", "libpq", "pgsql"}) {
    EXPECT_THAT(loaded, Not(Contains(HasSubstr(of_a_database))));
  }
}

}  // namespace
}  // namespace kuv::test
