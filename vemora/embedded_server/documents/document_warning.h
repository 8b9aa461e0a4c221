#pragma once

#include <memory>
#include <string>

#include "vemora/embedded_server/documents/check_fault.h"

namespace kuv::vemora::embedded_server {

class Json_Document;

/// What an operator surely did not mean, though the document is valid. It changes neither pass nor
/// outcome, unless warnings are to reject documents.
struct Document_Warning {
  std::string code;  ///< for programs, such as "not-storable"
  Check_Fault fault;
  std::shared_ptr<const Json_Document> stored =
      nullptr;  ///< the document, where it is a stored one
};

}  // namespace kuv::vemora::embedded_server
