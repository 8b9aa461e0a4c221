// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <boost/log/attributes/attribute_set.hpp>
#include <utility>

#include "vemora/platform/export.h"

namespace kuv::logging {

/// As long as it lives, each line that its thread logs says that nothing is stored: a pass that is
/// only tried logs what it would do in the words of one that does it. Sinks find the attribute
/// "Unstored". To be destroyed on the thread that made it.
class VEMORA_API Unstored_Lines {
 public:
  Unstored_Lines();
  ~Unstored_Lines();
  Unstored_Lines(const Unstored_Lines&) = delete;
  Unstored_Lines& operator=(const Unstored_Lines&) = delete;

 private:
  std::pair<boost::log::attribute_set::iterator, bool> added_;  ///< false: an outer one did it
};

}  // namespace kuv::logging
