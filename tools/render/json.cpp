#include "tools/render/json.h"

#include <json/writer.h>

#include <iostream>
#include <memory>

namespace kuv::vemora::tools {

void print_json(const Json::Value& value) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "";
  const std::unique_ptr<Json::StreamWriter> writer(builder.newStreamWriter());
  writer->write(value, &std::cout);
  std::cout << '\n';
}

}  // namespace kuv::vemora::tools
