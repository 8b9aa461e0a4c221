#pragma once

#include <cstdint>
#include <string>

namespace kuv::vemora::tools {

/// What is said before the command.
struct Options {
  std::string database = "vemora.db";
  std::uint64_t server_id = 1;
  bool json = false;
};

}  // namespace kuv::vemora::tools
