#pragma once

#include <json/value.h>

namespace kuv::vemora::tools {

/// Prints a JSON document on a line of its own. Plain ASCII, whatever bytes its texts hold.
void print_json(const Json::Value& value);

}  // namespace kuv::vemora::tools
