// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "vemora/platform/export.h"

namespace kuv::vemora {

/// One thing that is wrong with a document, as the parser finds it.
struct Parser_Fault {
  std::string message;  ///< exactly what the document is rejected with if this is the first fault

  /// Where the wrong value begins, or the object in which it is missing, in the document's text
  /// (Json::Value::getOffsetStart). Nothing if the fault is not about a part of the document.
  std::optional<std::size_t> offset;

  std::optional<std::size_t> index;  ///< of the trigger or association in its array
  std::optional<std::uint64_t> id;   ///< of the trigger, once it is known
};

/// Receives the faults of a document while the parser reads it, in the order of parsing. The first
/// one is the fault with which the document is rejected.
class VEMORA_API Fault_Sink {
 public:
  virtual ~Fault_Sink() = default;

  /// True: the parser continues and looks for more faults. False: it throws this fault, as it would
  /// without a sink.
  virtual bool take(Parser_Fault fault) = 0;
};

}  // namespace kuv::vemora
