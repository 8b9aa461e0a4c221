// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "tools/vemora-triggers/render/json.h"

#include <iostream>
#include <sstream>

namespace kuv::vemora::tools {
namespace {

std::unique_ptr<Json::StreamWriter> make_writer() {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
}

}  // namespace

Json_Texts::Json_Texts() : writer_(make_writer()) {}

std::string Json_Texts::of(const Json::Value& value) {
  std::ostringstream stream;
  stream.exceptions(std::ios::badbit |
                    std::ios::failbit);  // otherwise the text could be cut off silently
  writer_->write(value, &stream);
  return stream.str();
}

void print_json(const Json::Value& value) {
  std::cout << Json_Texts().of(value) << '\n';
}

}  // namespace kuv::vemora::tools
