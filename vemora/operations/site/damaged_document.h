#pragma once

#include "vemora/embedded_server/persistent/database_error.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

/// A stored document cannot be read, so that nothing can be said about what it configures; the
/// records beside it are not concerned.
class VEMORA_API Damaged_Document : public embedded_server::Database_Error {
 public:
  using embedded_server::Database_Error::Database_Error;
};

}  // namespace kuv::vemora::operations
