// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <stdexcept>
#include <string>

#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// A fault of the database: disk, connection, rights, a lock that was not to be had in time, a file
/// that is none of ours. The text says what happened, for people.
class VEMORA_API Database_Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kuv::vemora::embedded_server
