// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/site_lists.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <json/writer.h>

#include <limits>
#include <memory>
#include <sstream>
#include <utility>

#include "tools/vemora-triggers/render/list.h"
#include "tools/vemora-triggers/render/tags.h"
#include "vemora/embedded_server/documents/json_document.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::Inventory;
using embedded_server::printable;

template <class Record>
Json::Value named(const Record& record) {
  Json::Value object(Json::objectValue);
  object["id"] = Json::UInt64(record.id);
  object["name"] = record.name;
  return object;
}

template <class Values>
Json::Value listed(const Values& values) {
  Json::Value list(Json::arrayValue);
  for (const auto& value : values) {
    list.append(Json::Value(value));
  }
  return list;
}

Json::Value listed(const std::set<std::uint64_t>& ids) {
  Json::Value list(Json::arrayValue);
  for (const std::uint64_t id : ids) {
    list.append(Json::UInt64(id));
  }
  return list;
}

Json::Value to_json(const server& record) {
  Json::Value object = named(record);
  object["tags"] = tags_to_json(record.tags);
  return object;
}

Json::Value to_json(const schedule& record) {
  Json::Value object = named(record);
  object["usable"] = record.usable;
  return object;
}

Json::Value to_json(const metadata_event_category& record) {
  return named(record);
}

/// As large and as deep as it is stored.
Json::Value capabilities_of(const Inventory::Camera& record) {
  return embedded_server::Json_Document(record.capabilities,
                                        std::numeric_limits<std::size_t>::max())
      .value();
}

Json::Value to_json(const Inventory::Camera& record) {
  Json::Value object = named(record);
  object["tags"] = tags_to_json(record.tags);
  object["objectDetection"] = record.object_detection;
  object["motionDetection"] = record.motion_detection;
  if (!record.capabilities.empty()) {
    object["capabilities"] = capabilities_of(record);
  }
  return object;
}

Json::Value to_json(const Inventory::Subscription& record) {
  Json::Value object = named(record);
  if (record.category_id) {
    object["categoryId"] = Json::UInt64(*record.category_id);
  }
  object["tags"] = tags_to_json(record.tags);
  object["cameraIds"] = listed(record.camera_ids);
  return object;
}

template <class Record>
Json::Value all_to_json(const std::vector<Record>& records) {
  Json::Value list(Json::arrayValue);
  for (const Record& record : records) {
    list.append(to_json(record));
  }
  return list;
}

Json::Value to_json(const Inventory& inventory) {
  Json::Value document(Json::objectValue);
  document["servers"] = all_to_json(inventory.servers);
  document["cameras"] = all_to_json(inventory.cameras);
  document["schedules"] = all_to_json(inventory.schedules);
  document["eventCategories"] = all_to_json(inventory.categories);
  document["subscriptions"] = all_to_json(inventory.subscriptions);
  document["objectTypes"] = Json::Value(Json::objectValue);
  for (const auto& [name, types] : inventory.object_types) {
    document["objectTypes"][name] = listed(types);
  }
  return document;
}

/// For an editor, and for init.
std::string indented(const Json::Value& value) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "  ";
  builder["emitUTF8"] = true;
  const std::unique_ptr<Json::StreamWriter> writer(builder.newStreamWriter());
  std::ostringstream stream;
  stream.exceptions(std::ios::badbit | std::ios::failbit);
  writer->write(value, &stream);
  return stream.str() + "\n";
}

}  // namespace

void print_servers(const Options& options, const std::vector<server>& records,
                   const std::optional<std::size_t>& sort_column) {
  print_list(
      options, addresses(records), sort_column,
      list_form<server>(
          {"ID", "NAME", "TAGS"}, [](const server& record) { return to_json(record); },
          [](const server& record) -> Row {
            return {std::to_string(record.id), printable(record.name), describe_tags(record.tags)};
          }));
}

void print_schedules(const Options& options, const std::vector<schedule>& records,
                     const std::optional<std::size_t>& sort_column) {
  print_list(options, addresses(records), sort_column,
             list_form<schedule>(
                 {"ID", "NAME", "USABLE"}, [](const schedule& record) { return to_json(record); },
                 [](const schedule& record) -> Row {
                   return {std::to_string(record.id), printable(record.name),
                           record.usable ? "yes" : "no"};
                 }));
}

void print_object_types(const Options& options,
                        const std::map<std::string, std::set<std::string>>& types,
                        const std::optional<std::size_t>& sort_column) {
  using Type = std::pair<std::string, std::set<std::string>>;
  const std::vector<Type> records(types.begin(), types.end());
  const auto to_json = [](const Type& type) {
    Json::Value object(Json::objectValue);
    object["name"] = type.first;
    object["standsFor"] = listed(type.second);
    return object;
  };
  const auto to_row = [](const Type& type) -> Row {
    return {printable(type.first), printable(fmt::format("{}", fmt::join(type.second, ", ")))};
  };
  print_list(options, addresses(records), sort_column,
             list_form<Type>({"NAME", "STANDS FOR"}, to_json, to_row));
}

void print_inventory(const Options& options, const Inventory& inventory) {
  if (options.json) {
    print_json(to_json(inventory));
  } else {
    print_text(indented(to_json(inventory)));
  }
}

}  // namespace kuv::vemora::tools
