// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/documents/json_text.h"

#include <json/writer.h>

#include <memory>
#include <sstream>

namespace kuv::vemora::embedded_server {

std::string json_text(const Json::Value& value, Json_Encoding encoding) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  builder["emitUTF8"] = encoding == Json_Encoding::utf8;
  const std::unique_ptr<Json::StreamWriter> writer(builder.newStreamWriter());
  std::ostringstream stream;
  stream.exceptions(std::ios::badbit | std::ios::failbit);
  writer->write(value, &stream);
  return stream.str();
}

}  // namespace kuv::vemora::embedded_server
