// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "benchmarks/site_generator.h"

#include <json/writer.h>

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <map>
#include <tuple>

namespace kuv::benchmarks {
namespace {

using vemora::embedded_server::Inventory;

std::string topic_of(std::uint64_t number, const Site_Size& size) {
  return "tns1:RuleEngine/LineDetector/Crossed/Rule_" + std::to_string(number % size.topics);
}

std::string group_of(std::uint64_t number, const Site_Size& size) {
  const std::uint64_t groups =
      size.cameras_of_group == 0 ? 1
                                 : std::max<std::uint64_t>(1, size.cameras / size.cameras_of_group);
  return "group " + std::to_string(number % groups);
}

std::string capabilities(const Site_Size& size) {
  Json::Value topics(Json::objectValue);
  for (std::uint64_t number = 0; number < size.topics; ++number) {
    topics[topic_of(number, size)] = "";
  }
  Json::Value document;
  document["Metadata"]["Mode"]["capabilities"]["On"]["TopicFilter"]["capabilities"] = topics;
  return Json::writeString(Json::StreamWriterBuilder(), document);
}

Json::Value topic_source(std::uint64_t number, const Site_Size& size) {
  Json::Value source;
  source["type"] = "onvif-metadata";
  source["onvifTopic"] = topic_of(number, size);
  return source;
}

/// The sources of mixed triggers: topics mostly, every fifth detects, every seventh hears doors.
Json::Value source_of(std::uint64_t trigger, std::uint64_t place, const Site_Size& size) {
  Json::Value source;
  if (size.mixed_sources && place == 1 && trigger % 5 == 0) {
    source["type"] = "object-detection";
    source["searchItem"]["type"] = trigger % 2 == 0 ? "person" : "car";
    return source;
  }
  if (size.mixed_sources && place == 2 && trigger % 7 == 0) {
    source["type"] = "metadata-event";
    return source;
  }
  return topic_source(trigger * 7 + place, size);
}

Json::Value make_trigger(std::uint64_t number, const Site_Size& size) {
  Json::Value trigger;
  trigger["id"] = static_cast<Json::UInt64>(number + 1);
  trigger["name"] = "trigger " + std::to_string(number + 1);
  trigger["tags"] = Json::Value(Json::objectValue);
  if (size.cameras_of_group != 0 && number % size.one_unrestricted_in != 0) {
    trigger["tags"]["camera"]["group"] = group_of(number, size);
  }
  const std::uint64_t sources = 1 + number % size.sources_of_trigger;
  for (std::uint64_t place = 0; place < sources; ++place) {
    trigger["sources"].append(source_of(number, place, size));
  }
  return trigger;
}

Site_Size site_of_links(std::uint64_t links) {
  Site_Size size;
  const auto side = static_cast<std::uint64_t>(std::llround(std::sqrt(static_cast<double>(links))));
  size.name = std::to_string(links) + " links";
  size.cameras = side;
  size.triggers = side;
  size.topics = 4;
  return size;
}

Site_Size site_of_axes(std::uint64_t cameras, std::uint64_t triggers, std::uint64_t topics) {
  Site_Size size;
  size.name = std::to_string(cameras) + " cameras, " + std::to_string(triggers) + " triggers, " +
              std::to_string(topics) + " topics";
  size.cameras = cameras;
  size.triggers = triggers;
  size.topics = topics;
  return size;
}

Site_Size site_of_name(const std::string& name) {
  const std::map<std::string, std::pair<std::uint64_t, std::uint64_t>> sizes{
      {"S", {100, 100}}, {"M", {300, 1'000}}, {"L", {2'000, 5'000}}, {"XL", {10'000, 20'000}}};
  Site_Size size;
  size.name = "site " + name;
  std::tie(size.cameras, size.triggers) = sizes.at(name);
  size.sources_of_trigger = 5;
  size.cameras_of_group = 30;
  size.one_unrestricted_in = 50;
  size.mixed_sources = true;
  size.generic_subscriptions = 20;
  return size;
}

}  // namespace

Site_Size site_of_text(const std::string& text) {
  std::uint64_t cameras = 0;
  std::uint64_t triggers = 0;
  std::uint64_t topics = 0;
  if (std::sscanf(text.c_str(), "%" SCNu64 "x%" SCNu64 "x%" SCNu64, &cameras, &triggers, &topics) ==
      3) {
    return site_of_axes(cameras, triggers, topics);
  }
  const bool number = text.find_first_not_of("0123456789") == std::string::npos;
  return number ? site_of_links(std::stoull(text)) : site_of_name(text);
}

Inventory make_inventory(const Site_Size& size) {
  Inventory inventory;
  vemora::server server;
  server.id = 1;
  inventory.servers.push_back(server);
  const std::string text = capabilities(size);
  for (std::uint64_t number = 0; number < size.cameras; ++number) {
    Inventory::Camera camera;
    camera.id = number + 1;
    camera.name = "camera " + std::to_string(number + 1);
    camera.tags["group"].value = group_of(number, size);
    camera.tags["site"].value = "north";
    camera.object_detection = true;
    camera.capabilities = text;
    inventory.cameras.push_back(std::move(camera));
  }
  for (std::uint64_t number = 0; number < size.generic_subscriptions; ++number) {
    Inventory::Subscription subscription;
    subscription.id = 1'000'000 + number;
    subscription.name = "door " + std::to_string(number);
    inventory.subscriptions.push_back(std::move(subscription));
  }
  return inventory;
}

Json::Value make_config(const Site_Size& size) {
  Json::Value config;
  config["triggers"] = Json::Value(Json::arrayValue);
  for (std::uint64_t number = 0; number < size.triggers; ++number) {
    config["triggers"].append(make_trigger(number, size));
  }
  return config;
}

Json::Value with_one_trigger_changed(Json::Value config, const Site_Size& size) {
  Json::Value& changed = config["triggers"][config["triggers"].size() / 2];
  changed["sources"][0] = topic_source(config["triggers"].size() / 2 * 7 + 1, size);
  return config;
}

Json::Value with_half_of_the_triggers(Json::Value config) {
  config["triggers"].resize(config["triggers"].size() / 2);
  return config;
}

Json::Value with_one_name_in_a_hundred(Json::Value config, const std::string& name) {
  for (Json::ArrayIndex place = 0; place < config["triggers"].size(); place += 100) {
    config["triggers"][place]["name"] = name;
  }
  return config;
}

Json::Value with_a_bad_last_trigger(Json::Value config) {
  config["triggers"][config["triggers"].size() - 1].removeMember("name");
  return config;
}

Inventory with_a_tenth_of_the_tags_changed(Inventory inventory, const Site_Size& size) {
  for (std::uint64_t number = 0; number < inventory.cameras.size(); number += 10) {
    inventory.cameras[number].tags["group"].value = group_of(number + 1, size);
  }
  return inventory;
}

}  // namespace kuv::benchmarks
