// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <fmt/format.h>
#include <json/writer.h>

#include "support/stub_platform/stub_platform.h"
#include "vemora/platform/utils/json.h"

namespace stub = kuv::test::stub_platform;

namespace kuv::utils {
namespace {

std::string compact(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, value);
}

}  // namespace

void set_json_value_if_null(Json::Value& target, const Json::Value& fallback) {
  stub::called(stub::Function::set_json_value_if_null,
               fmt::format("set_json_value_if_null {} {}", compact(target), compact(fallback)));
  if (target.isNull()) {
    target = fallback;
  }
}

}  // namespace kuv::utils
