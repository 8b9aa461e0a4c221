#pragma once

#include <json/value.h>
#include <json/writer.h>

#include <memory>
#include <string>

namespace kuv::vemora::tools {

/// Makes texts of values, each on one line and in plain ASCII, whatever bytes their texts hold.
class Json_Texts {
 public:
  Json_Texts();

  std::string of(const Json::Value& value);

 private:
  std::unique_ptr<Json::StreamWriter> writer_;
};

/// Prints a JSON document on a line of its own.
void print_json(const Json::Value& value);

}  // namespace kuv::vemora::tools
