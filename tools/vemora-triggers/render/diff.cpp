// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/diff.h"

#include <fmt/format.h>
#include <json/value.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "tools/vemora-triggers/render/counted.h"
#include "tools/vemora-triggers/render/json.h"
#include "vemora/embedded_server/texts/printable.h"

namespace kuv::vemora::tools {
namespace {

using embedded_server::printable;
using operations::Changed_Field;
using operations::Different_Trigger;
using operations::Document_Difference;

Json::Value to_json(const Json::Value* value) {
  return value != nullptr ? *value : Json::Value();
}

Json::Value to_json(const std::vector<const Json::Value*>& values) {
  Json::Value list(Json::arrayValue);
  for (const Json::Value* const value : values) {
    list.append(*value);
  }
  return list;
}

bool is_of_lists(const Changed_Field& field) {
  return field.before == nullptr && field.after == nullptr;
}

Json::Value to_json(const Changed_Field& field) {
  Json::Value object(Json::objectValue);
  object["field"] = field.path;
  if (is_of_lists(field)) {
    object["removed"] = to_json(field.removed);
    object["added"] = to_json(field.added);
    return object;
  }
  if (field.before != nullptr) {
    object["before"] = *field.before;
  }
  if (field.after != nullptr) {
    object["after"] = *field.after;
  }
  return object;
}

Json::Value to_json(const std::vector<Changed_Field>& fields) {
  Json::Value list(Json::arrayValue);
  for (const Changed_Field& field : fields) {
    list.append(to_json(field));
  }
  return list;
}

const char* action_of(const Different_Trigger& different) {
  return different.before == nullptr ? "create" : different.after == nullptr ? "delete" : "change";
}

Json::Value to_json(const Different_Trigger& different) {
  Json::Value object(Json::objectValue);
  object["action"] = action_of(different);
  object["id"] = Json::UInt64(different.id);
  object["before"] = to_json(different.before);
  object["after"] = to_json(different.after);
  object["fields"] = to_json(different.fields);
  return object;
}

Json::Value to_json(const Diff_Request& request, const Document_Difference& difference) {
  Json::Value object(Json::objectValue);
  object["before"] = Json::UInt64(request.before);
  object["after"] = request.after ? Json::Value(Json::UInt64(*request.after)) : Json::Value();
  object["triggers"] = Json::Value(Json::arrayValue);
  for (const Different_Trigger& different : difference.triggers) {
    object["triggers"].append(to_json(different));
  }
  object["settings"] = to_json(difference.settings);
  object["associations"]["removed"] = to_json(difference.associations.removed);
  object["associations"]["added"] = to_json(difference.associations.added);
  object["mappingSettings"] = to_json(difference.mapping_settings);
  object["sameTexts"] = difference.has_same_texts();
  return object;
}

/// As it is written, on one line, and safe to show.
std::string text_of(const Json::Value& value) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  builder["emitUTF8"] = true;
  return printable(Json::writeString(builder, value));
}

void print_elements(char sign, const std::string& indent, const std::string& what,
                    const std::vector<const Json::Value*>& elements) {
  for (const Json::Value* const element : elements) {
    std::cout << fmt::format("{}{} {} {}\n", indent, sign, what, text_of(*element));
  }
}

void print_field(const Changed_Field& field, const std::string& indent) {
  const std::string path = printable(field.path);
  if (is_of_lists(field)) {
    print_elements('-', indent, path, field.removed);
    print_elements('+', indent, path, field.added);
  } else if (field.before == nullptr) {
    std::cout << fmt::format("{}+ {} {}\n", indent, path, text_of(*field.after));
  } else if (field.after == nullptr) {
    std::cout << fmt::format("{}- {} {}\n", indent, path, text_of(*field.before));
  } else {
    std::cout << fmt::format("{}~ {} {} -> {}\n", indent, path, text_of(*field.before),
                             text_of(*field.after));
  }
}

void print_fields(const std::vector<Changed_Field>& fields, const std::string& indent) {
  for (const Changed_Field& field : fields) {
    print_field(field, indent);
  }
}

void print_trigger(const Different_Trigger& different) {
  const char sign = different.before == nullptr ? '+' : different.after == nullptr ? '-' : '~';
  const Json::Value* const shown =
      different.after != nullptr ? different.after : different.before;  // one of them is there
  std::cout << fmt::format("{} trigger {} {}\n", sign, different.id,
                           shown != nullptr ? text_of((*shown)["name"]) : "");
  print_fields(different.fields, "    ");
}

std::string describe_after(const Diff_Request& request) {
  return request.after ? fmt::format("pass {}", *request.after) : "what is stored";
}

void print_counts(const Diff_Request& request, const Document_Difference& difference) {
  const auto count = [&difference](const char* action) {
    return std::count_if(difference.triggers.begin(), difference.triggers.end(),
                         [action](const Different_Trigger& different) {
                           return std::string(action_of(different)) == action;
                         });
  };
  const std::size_t removed = difference.associations.removed.size();
  const std::size_t added = difference.associations.added.size();
  std::cout << fmt::format(
      "From pass {} to {}: {} (+{} ~{} -{}), {} (+{} -{}), {}.\n", request.before,
      describe_after(request), counted(difference.triggers.size(), "trigger", "triggers"),
      count("create"), count("change"), count("delete"),
      counted(removed + added, "mapping entry", "mapping entries"), added, removed,
      counted(difference.settings.size() + difference.mapping_settings.size(), "other field",
              "other fields"));
}

void print_for_people(const Diff_Request& request, const Document_Difference& difference) {
  if (difference.is_empty()) {
    std::cout << fmt::format(
        "The documents of pass {} and {} {}.\n", request.before, describe_after(request),
        difference.has_same_texts() ? "are the same" : "say the same in another form");
    return;
  }
  for (const Different_Trigger& different : difference.triggers) {
    print_trigger(different);
  }
  print_fields(difference.settings, "");
  print_elements('-', "", "mapping", difference.associations.removed);
  print_elements('+', "", "mapping", difference.associations.added);
  print_fields(difference.mapping_settings, "");
  print_counts(request, difference);
}

}  // namespace

void print_difference(const Options& options, const Diff_Request& request,
                      const Document_Difference& difference) {
  if (options.json) {
    print_json(to_json(request, difference));
  } else {
    print_for_people(request, difference);
  }
}

}  // namespace kuv::vemora::tools
