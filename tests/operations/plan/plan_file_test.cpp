// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/plan/plan_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace kuv::test {
namespace {

using vemora::operations::Kept_Plan;
using vemora::operations::Plan_File;
using vemora::operations::Plan_File_Error;

class Plan_File_Test : public testing::Test {
 protected:
  Plan_File_Test() {
    std::string name = std::filesystem::temp_directory_path() / "planXXXXXX";
    folder_ = mkdtemp(name.data());
  }
  ~Plan_File_Test() override { std::filesystem::remove_all(folder_); }

  std::string path(const std::string& name = "plan") const { return folder_ / name; }

  static std::string content_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  void given_content(const std::string& content) const {
    std::ofstream(path(), std::ios::binary) << content;
  }

  std::string complaint_on_reading() const {
    try {
      Plan_File(path()).read();
    } catch (const Plan_File_Error& error) {
      return error.what();
    }
    return "none";
  }

  std::size_t files() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder_), {}));
  }

  const Kept_Plan plan{18446744073709551615U, "{\"triggers\": []}", std::nullopt, "abc", 41};

 private:
  std::filesystem::path folder_;
};

bool operator==(const Kept_Plan& left, const Kept_Plan& right) {
  return left.server_id == right.server_id && left.config == right.config &&
         left.mapping == right.mapping && left.site_digest == right.site_digest &&
         left.last_pass == right.last_pass;
}

TEST_F(Plan_File_Test, gives_back_what_was_written_byte_for_byte) {
  std::string every_byte;
  for (int byte = 0; byte < 256; ++byte) {
    every_byte += static_cast<char>(byte);
  }
  for (const Kept_Plan& kept : {plan, Kept_Plan{0, "", "", "", 0},
                                Kept_Plan{1, every_byte, every_byte + "\\u0041\"", "d", 1}}) {
    Plan_File(path()).write(kept);
    EXPECT_TRUE(Plan_File(path()).read() == kept);
  }
}

TEST_F(Plan_File_Test, is_for_its_owner_alone) {
  const mode_t before = ::umask(0);
  Plan_File(path()).write(plan);
  ::umask(before);
  struct stat status {};
  ASSERT_EQ(::stat(path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST_F(Plan_File_Test, replaces_a_plan_and_leaves_nothing_beside_it) {
  given_content("left behind");
  std::filesystem::rename(path(), path("plan.part"));
  Plan_File(path()).write(plan);
  Kept_Plan other = plan;
  other.config = "[]";
  Plan_File(path()).write(other);
  EXPECT_TRUE(Plan_File(path()).read() == other);
  EXPECT_EQ(files(), 1U);
}

TEST_F(Plan_File_Test, never_replaces_anything_else) {
  for (const char* const content : {"", "{\"triggers\": []}", "{", "precious"}) {
    given_content(content);
    EXPECT_THROW(Plan_File(path()).write(plan), Plan_File_Error) << content;
    EXPECT_EQ(content_of(path()), content);
  }
  std::filesystem::remove(path());
  std::filesystem::create_directory(path());
  EXPECT_THROW(Plan_File(path()).require_replaceable(), Plan_File_Error);
  EXPECT_THROW(Plan_File("/proc/none/plan").write(plan), Plan_File_Error);
  EXPECT_EQ(files(), 1U);
}

TEST_F(Plan_File_Test, says_of_what_is_no_plan_that_it_is_none) {
  EXPECT_THAT(complaint_on_reading(), testing::HasSubstr("No such file"));
  given_content("{\"triggers\": []}");
  EXPECT_EQ(complaint_on_reading(), "this is not a plan; plan --out writes one");
  given_content("[]");
  EXPECT_EQ(complaint_on_reading(), "this is not a plan; plan --out writes one");
  given_content("{\"triggers\"");
  EXPECT_THAT(complaint_on_reading(), testing::StartsWith("this is not a plan, or damaged: "));
}

TEST_F(Plan_File_Test, says_of_a_later_form_that_it_is_not_known) {
  for (const char* const version : {"1", "3", "\"2\"", "-1", "1e99"}) {
    given_content(std::string("{\"vemoraTriggersPlan\":") + version + "}");
    EXPECT_EQ(complaint_on_reading(),
              "this version cannot read the plan; make it again with this version")
        << version;
  }
}

TEST_F(Plan_File_Test, notices_each_changed_byte) {
  Kept_Plan whole = plan;
  whole.mapping = "{\"triggerMapping\": []}";
  Plan_File(path()).write(whole);
  const std::string content = content_of(path());
  for (std::size_t place = 0; place < content.size(); ++place) {
    for (const char changed : {'x', '7', ' ', '"'}) {
      std::string damaged = content;
      damaged[place] = changed;
      given_content(damaged);
      const std::string complaint = complaint_on_reading();
      if (complaint == "none") {  // a blank for a line's end, or the byte that was there
        EXPECT_TRUE(Plan_File(path()).read() == whole) << damaged;
      }
    }
    given_content(content.substr(0, place));
    if (place + 1 < content.size()) {
      EXPECT_NE(complaint_on_reading(), "none") << place;
    }
  }
}

}  // namespace
}  // namespace kuv::test
