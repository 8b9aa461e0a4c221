// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "vemora/embedded_server/persistent/database_error.h"

namespace kuv::vemora::embedded_server {

/// A schema step cannot be made of what another program, or somebody by hand, put into the tables.
class Unfit_For_Step : public Database_Error {
 public:
  using Database_Error::Database_Error;
};

}  // namespace kuv::vemora::embedded_server
