// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <string>
#include <vector>

#include "vemora/embedded_server/documents/check_fault.h"
#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/trigger_parser/parser_fault.h"

namespace kuv::vemora::embedded_server {

/// Receives the faults that the parser finds in one document, and locates them.
class Located_Faults : public Fault_Sink {
 public:
  enum class Wanted { first, all };

  /// Appends to `found`. Without a document, locations are not known; that is so for stored ones.
  Located_Faults(std::string name, const Json_Document* document, Wanted wanted,
                 std::vector<Check_Fault>& found);

  bool take(Parser_Fault fault) override;

 private:
  std::string name_;
  const Json_Document* document_;
  Wanted wanted_;
  std::vector<Check_Fault>& found_;
  Text_Position last_;
};

}  // namespace kuv::vemora::embedded_server
