// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/operations/warnings/nearest_name.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kuv::vemora::operations {
namespace {

std::string nearest(const std::string& wrong, const std::vector<std::string>& names) {
  Nearest_Name nearest(wrong);
  for (const std::string& name : names) {
    nearest.offer(name);
  }
  return std::string(nearest.found());
}

TEST(Nearest_Name, is_the_one_that_differs_least) {
  EXPECT_EQ(nearest("cameras", {"server", "camera", "cameraId"}), "camera");
  EXPECT_EQ(nearest("schedules", {"sources", "scheduleIds"}), "scheduleIds");
  EXPECT_EQ(nearest("anytime", {"name", "anyTime"}), "anyTime");
}

TEST(Nearest_Name, may_lack_a_letter_have_one_more_another_or_two_swapped) {
  for (const char* const wrong : {"servr", "serveer", "sarver", "sevrer", "SERVER", "server "}) {
    EXPECT_EQ(nearest(wrong, {"camera", "server"}), "server") << wrong;
  }
}

TEST(Nearest_Name, may_have_the_wrong_one_in_it_where_no_other_comes_near) {
  EXPECT_EQ(nearest("duration", {"minDurationMs", "mode"}), "minDurationMs");
  EXPECT_EQ(nearest("topic", {"type", "onvifTopic"}), "onvifTopic");
  EXPECT_EQ(nearest("camera", {"cameraFilter", "camara"}), "camara");
}

TEST(Nearest_Name, is_none_where_all_are_far) {
  EXPECT_EQ(nearest("prio", {"id", "name", "tags", "sources"}), "");
  EXPECT_EQ(nearest("ix", {"abc"}), "");
  EXPECT_EQ(nearest("x", {"", "abcdefgh"}), "");
  EXPECT_EQ(nearest("", {"abc"}), "");
  EXPECT_EQ(nearest("abcd", {}), "");
}

TEST(Nearest_Name, is_not_looked_for_where_a_name_is_longer_than_names_are) {
  const std::string fits(200, 'x');
  EXPECT_EQ(nearest(fits, {fits.substr(1)}), fits.substr(1));
  EXPECT_EQ(nearest(fits + "x", {fits}), "");
  EXPECT_EQ(nearest(fits, {fits + "x"}), "");
  EXPECT_EQ(nearest(std::string(1'000'000, 'x'), {fits}), "");
}

TEST(Nearest_Name, is_asked_for_in_quotes) {
  EXPECT_EQ(asking_for("camera"), "; did you mean \"camera\"?");
  EXPECT_EQ(asking_for(""), ".");
}

TEST(Nearest_Name, is_not_looked_for_inside_others_where_one_comes_near_already) {
  const std::string near(100, 'a');
  const std::string wrong = near + "c";
  const std::string long_one = std::string(199, 'a') + "b";
  Nearest_Name nearest(wrong);
  EXPECT_GT(nearest.offer(long_one), 9'000);
  EXPECT_EQ(nearest.found(), "");

  nearest.offer(near);

  EXPECT_LT(nearest.offer(long_one), 10);
  EXPECT_EQ(nearest.found(), near);
}

TEST(Nearest_Name, is_given_up_after_the_first_letters_where_they_differ) {
  const std::string same_end(150, 'a');
  const std::string wrong = "bcdefg" + same_end;
  const std::string other = "hijklm" + same_end;
  Nearest_Name nearest(wrong);
  EXPECT_LT(nearest.offer(other), 300);
  EXPECT_EQ(nearest.found(), "");
}

TEST(Comparison_Budget, is_spent_after_so_many_letters) {
  Comparison_Budget budget;
  budget.spend(19'999'999);
  EXPECT_FALSE(budget.is_spent());
  budget.spend(2);
  EXPECT_TRUE(budget.is_spent());
}

}  // namespace
}  // namespace kuv::vemora::operations
