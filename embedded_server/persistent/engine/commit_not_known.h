#pragma once

#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::vemora::embedded_server {

/// A commit of which nobody can know whether it was carried out, or will last.
class Commit_Not_Known : public Database_Error {
 public:
  using Database_Error::Database_Error;
};

}  // namespace kuv::vemora::embedded_server
