// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only

// The keys that the published schemas name and those that the parser reads are the same.

#include "vemora/operations/warnings/document_keys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/value.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "support/fake_repository.h"
#include "support/json.h"
#include "support/log_capture.h"
#include "vemora/trigger_parser/vemora_trigger_parser.h"

namespace kuv::test {
namespace {

using namespace kuv::vemora;
using operations::Document_Keys;
using operations::keys_of_configuration;
using operations::keys_of_mapping;

/// Where a key stands in a document, for example /triggers/#/tags/camera.
using Paths = std::set<std::string>;

void gather(const Document_Keys& keys, const std::string& path, Paths& paths) {
  for (const Document_Keys::Member& member : keys.members) {
    const std::string deeper = path + "/" + member.key;
    paths.insert(deeper);
    gather(*member.keys, deeper, paths);
  }
  if (keys.elements) {
    gather(*keys.elements, path + "/#", paths);
  }
  for (std::size_t type = 0; keys.depend_on_source_type && type < source_type_names.size();
       ++type) {
    if (keys.by_source_type.at(type)) {
      gather(*keys.by_source_type.at(type), path + ":" + std::string(source_type_names.at(type)),
             paths);
    }
  }
}

class Counted_Faults : public Fault_Sink {
 public:
  bool take(Parser_Fault) override {
    ++count;
    return true;
  }

  std::size_t count = 0;
};

/// How many faults the parser finds in a document.
std::size_t faults_of(const Json::Value& document, bool is_mapping) {
  const Log_Capture log;
  Fake_Database database;
  database.servers.records[9] = std::make_shared<server>(server{9, "north", {}});
  Vemora_Trigger_Parser parser(make_fake_repository(database), 9);
  Counted_Faults faults;
  if (is_mapping) {
    parser.parse_trigger_mapping(document, faults);
  } else {
    parser.parse_config_properties(document, faults);
    parser.parse_trigger_configs(document, {}, faults);
  }
  return faults.count;
}

/// A value that no key may have.
Json::Value nothing_right() {
  Json::Value array(Json::arrayValue);
  array.append(Json::Value(Json::objectValue));
  return array;
}

/// A source with everything in it that its type may have.
Json::Value source_of(const std::string& type) {
  Json::Value source(Json::objectValue);
  source["type"] = type;
  if (type == "onvif-metadata") {
    source["onvifTopic"] = "a";
  }
  if (type == "object-detection") {
    source["searchItem"]["type"] = "person";
    source["searchItem"]["motionRequired"] = true;
  }
  if (type == "object-detection" || type == "motion-detection") {
    source["activityDuration"] =
        json(R"({"mode": "object-presence", "minDurationMs": 1000, "dropoutMs": 1000})");
  }
  return source;
}

/// A valid configuration whose only source is of that type.
Json::Value configuration_of(const std::string& type) {
  Json::Value configuration = json(R"({"properties": {}, "triggers": [
      {"id": 7, "name": "", "tags": {}, "anyTime": true, "scheduleIds": []}]})");
  configuration["triggers"][0]["sources"].append(source_of(type));
  return configuration;
}

/// The member that a path leads to; elements of arrays are the first ones.
Json::Value& member_at(Json::Value& document, const std::string& path) {
  static const std::regex step("/([^/:]+)");
  Json::Value* member = &document;
  for (std::sregex_iterator found(path.begin(), path.end(), step), end; found != end; ++found) {
    const std::string name = (*found)[1];
    member = name == "#" ? &(*member)[0] : &(*member)[name];
  }
  return *member;
}

/// The source type that a path is about.
std::string type_in(const std::string& path) {
  const std::size_t colon = path.find(':');
  return colon == std::string::npos ? "metadata-event"
                                    : path.substr(colon + 1, path.find('/', colon) - colon - 1);
}

TEST(The_Keys_Of_The_Schemas, are_read_by_the_parser_every_one_of_them) {
  Paths paths;
  gather(keys_of_configuration(), "", paths);
  EXPECT_GE(paths.size(), 20);
  for (const std::string& path : paths) {
    Json::Value document = configuration_of(type_in(path));
    ASSERT_EQ(faults_of(document, false), 0) << path;
    member_at(document, path) = nothing_right();
    EXPECT_GT(faults_of(document, false), 0) << path;
  }
}

TEST(The_Keys_Of_The_Schemas, are_read_by_the_parser_of_the_mapping_too) {
  Paths paths;
  gather(keys_of_mapping(), "", paths);
  EXPECT_EQ(paths, (Paths{"/triggerMapping", "/triggerMapping/#/scheduleIds",
                          "/triggerMapping/#/triggerIds"}));
  for (const std::string& path : paths) {
    Json::Value document = json(R"({"triggerMapping": [{"scheduleIds": [], "triggerIds": [7]}]})");
    ASSERT_EQ(faults_of(document, true), 0);
    member_at(document, path) = nothing_right();
    EXPECT_GT(faults_of(document, true), 0) << path;
  }
}

std::string content_of(const std::filesystem::path& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void gather_matches(const std::string& text, const std::regex& wanted,
                    std::set<std::string>& found) {
  for (std::sregex_iterator match(text.begin(), text.end(), wanted), end; match != end; ++match) {
    found.insert((*match)[1]);
  }
}

/// The keys that the parser's code looks members up by.
std::set<std::string> keys_in_code() {
  static const std::regex subscript(R"re(\[\s*"(\w+)"\s*\])re");
  static const std::regex call(R"re((find_members\([^;]*\);))re");
  static const std::regex setting(R"re(\{"(notification\w+)",)re");
  static const std::regex literal(R"re("(\w+)")re");
  std::set<std::string> keys;
  for (const auto& file : std::filesystem::directory_iterator(VEMORA_PARSER_SOURCES)) {
    const std::string code = content_of(file.path());
    gather_matches(code, subscript, keys);
    gather_matches(code, setting, keys);
    std::set<std::string> calls;
    gather_matches(code, call, calls);
    for (const std::string& text : calls) {
      gather_matches(text, literal, keys);
    }
  }
  return keys;
}

TEST(The_Keys_That_The_Parser_Reads, are_those_of_the_schemas) {
  Paths paths;
  gather(keys_of_configuration(), "", paths);
  gather(keys_of_mapping(), "", paths);
  std::set<std::string> named;
  for (const std::string& path : paths) {
    named.insert(path.substr(path.rfind('/') + 1));
  }
  EXPECT_EQ(keys_in_code(), named);
}

}  // namespace
}  // namespace kuv::test
