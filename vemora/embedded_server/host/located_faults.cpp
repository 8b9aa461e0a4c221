// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/host/located_faults.h"

#include <utility>

namespace kuv::vemora::embedded_server {

Located_Faults::Located_Faults(std::string name, const Json_Document* document, Wanted wanted,
                               std::vector<Check_Fault>& found)
    : name_(std::move(name)), document_(document), wanted_(wanted), found_(found) {}

bool Located_Faults::take(Parser_Fault fault) {
  Location location;
  if (document_ != nullptr && fault.offset) {
    location = document_->locate_offset(*fault.offset, last_);
  }
  found_.push_back({name_, {std::move(fault.message), location}, fault.index, fault.id});
  return wanted_ == Wanted::all;
}

}  // namespace kuv::vemora::embedded_server
