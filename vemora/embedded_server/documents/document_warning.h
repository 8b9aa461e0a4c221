#pragma once

#include <string>

#include "vemora/embedded_server/documents/check_fault.h"

namespace kuv::vemora::embedded_server {

/// What an operator surely did not mean, though the document is valid. It changes neither pass nor
/// outcome.
struct Document_Warning {
  std::string code;  ///< for programs, such as "not-storable"
  Check_Fault fault;
};

}  // namespace kuv::vemora::embedded_server
