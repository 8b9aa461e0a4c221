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

  /// Of the wrong value, or of the object that misses it, in the text that the document was read
  /// from (Json::Value::getOffsetStart). Nothing when the fault is none of the document's.
  std::optional<std::size_t> offset;

  std::optional<std::size_t> index;  ///< of the trigger or association in its array
  std::optional<std::uint64_t> id;   ///< of the trigger, once it is known
};

/// Is told what is wrong with a document while the parser reads it: in its order, the first one
/// being what the document is rejected with.
class VEMORA_API Fault_Sink {
 public:
  virtual ~Fault_Sink() = default;

  /// True: the parser goes on and looks for more faults. False: it throws this fault as it would
  /// without a sink.
  virtual bool take(Parser_Fault fault) = 0;
};

}  // namespace kuv::vemora
