// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/known_keys.h"

#include <gtest/gtest.h>
#include <json/value.h>

#include <filesystem>
#include <set>
#include <string>

#include "vemora/embedded_server/documents/json_document.h"

namespace kuv::vemora::embedded_server {
namespace {

/// The keys that a schema, or a part of one, gives properties for.
void add_keys(const Json::Value& schema, std::set<std::string>& keys) {
  if (!schema.isObject() && !schema.isArray()) {
    return;
  }
  for (auto part = schema.begin(); part != schema.end(); ++part) {
    const std::string name = part.name();  // empty in an array
    if (name != "properties" && name != "$defs") {
      add_keys(*part, keys);
      continue;
    }
    for (auto named = part->begin(); named != part->end(); ++named) {
      if (name == "properties") {
        keys.insert(named.name());
      }
      add_keys(*named, keys);
    }
  }
}

std::set<std::string> keys_of_schemas() {
  std::set<std::string> keys;
  for (const auto& file : std::filesystem::directory_iterator(VEMORA_SCHEMAS)) {
    add_keys(Json_Document::read(file.path()).value(), keys);
  }
  return keys;
}

TEST(Known_Keys, are_those_of_the_schemas) {
  const std::set<std::string> keys = keys_of_schemas();
  ASSERT_GT(keys.size(), 30);
  for (const std::string& key : keys) {
    const char* const known = known_key(key);
    ASSERT_NE(known, nullptr) << key;
    EXPECT_EQ(known, key);
  }
}

TEST(Known_Keys, are_the_same_text_each_time) {
  EXPECT_EQ(known_key(std::string("onvifTopic")), known_key(std::string("onvifTopic")));
}

TEST(Known_Keys, are_no_others) {
  for (const std::string& key : {std::string(), std::string("i"), std::string("idx"),
                                 std::string("ID"), std::string("id\0", 3), std::string("area")}) {
    EXPECT_EQ(known_key(key), nullptr) << key;
  }
}

}  // namespace
}  // namespace kuv::vemora::embedded_server
