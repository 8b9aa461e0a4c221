// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/platform/records/supported_topics.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace kuv::test {
namespace {

using namespace kuv::vemora;
using Tree = Capability_Document::Tree;

const std::string path = "Metadata.Mode.capabilities.On.TopicFilter.capabilities";

camera a_camera_with(const Tree& capabilities) {
  camera record;
  record.capabilities = Capability_Document(std::make_shared<const Tree>(capabilities));
  return record;
}

camera a_camera_sending(const std::string& topic) {
  Tree topics;
  topics.push_back({topic, Tree()});
  Tree capabilities;
  capabilities.put_child(path, topics);
  return a_camera_with(capabilities);
}

TEST(Supported_Topics, are_none_where_a_part_of_the_path_is_missing) {
  EXPECT_TRUE(supported_topics(camera()).empty());
  for (const char* other : {"Metadata.Mode.capabilities.On.TopicFilter.a",
                            "Metadata.Mode.capabilities.Off.TopicFilter.capabilities.a", "a"}) {
    Tree capabilities;
    capabilities.put(other, "");
    EXPECT_TRUE(supported_topics(a_camera_with(capabilities)).empty()) << other;
  }
}

TEST(Supported_Topics, are_the_keys_at_the_end_of_the_path) {
  const camera record = a_camera_sending("tns1:A/B.C");
  ASSERT_EQ(supported_topics(record).size(), 1);
  EXPECT_EQ(supported_topics(record).front().first, "tns1:A/B.C");
}

TEST(Supported_Topics, are_compared_whole_and_byte_for_byte) {
  for (const char* topic : {"tns1:A/B", "a.b.c", ".", "//.", "a\x07z", "{}", "\xC3\xA4"}) {
    const camera record = a_camera_sending(topic);
    EXPECT_TRUE(is_supported(supported_topics(record), topic)) << topic;
  }
  const camera record = a_camera_sending("tns1:A/B");
  for (const char* other : {"tns1:A", "tns1:a/b", "TNS1:A/B", "tns1:A/B/C", "tns1:A/B ", ""}) {
    EXPECT_FALSE(is_supported(supported_topics(record), other)) << other;
  }
}

TEST(Supported_Topics, are_not_looked_for_along_the_parts_of_a_topic) {
  Tree capabilities;
  capabilities.put(path + ".tns1:A.B", "");
  const camera record = a_camera_with(capabilities);
  EXPECT_TRUE(is_supported(supported_topics(record), "tns1:A"));
  EXPECT_FALSE(is_supported(supported_topics(record), "tns1:A.B"));
}

}  // namespace
}  // namespace kuv::test
