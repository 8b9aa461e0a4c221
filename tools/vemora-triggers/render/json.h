// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <json/value.h>
#include <json/writer.h>

#include <memory>
#include <string>

namespace kuv::vemora::tools {

/// Converts values to JSON, each on one line and in ASCII, whatever bytes their strings contain.
class Json_Texts {
 public:
  Json_Texts();

  std::string of(const Json::Value& value);

 private:
  std::unique_ptr<Json::StreamWriter> writer_;
};

/// Prints a JSON document on one line.
void print_json(const Json::Value& value);

}  // namespace kuv::vemora::tools
