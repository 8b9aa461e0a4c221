#pragma once

#include <json/value.h>

#include <string>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

enum class Json_Letters {
  ascii,  ///< all others are escaped, and so are bytes that are no letter
  utf8,   ///< as they are
};

/// A JSON document on one line. Whole, or it throws: a stream that runs out of memory would leave
/// out the rest in silence.
VEMORA_API std::string json_text(const Json::Value& value, Json_Letters letters);

}  // namespace kuv::vemora::embedded_server
