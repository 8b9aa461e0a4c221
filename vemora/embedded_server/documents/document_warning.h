// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>
#include <string>

#include "vemora/embedded_server/documents/check_fault.h"

namespace kuv::vemora::embedded_server {

class Json_Document;

/// What an operator probably did not mean, although the document is valid. A warning changes
/// neither the pass nor its outcome, unless warnings reject documents.
struct Document_Warning {
  std::string code;  ///< for programs; for example "not-storable"
  Check_Fault fault;
  std::shared_ptr<const Json_Document> stored = nullptr;  ///< the document if it is a stored one
};

}  // namespace kuv::vemora::embedded_server
