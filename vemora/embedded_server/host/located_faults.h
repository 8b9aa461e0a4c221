#pragma once

#include <string>
#include <vector>

#include "vemora/embedded_server/documents/check_fault.h"
#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/trigger_parser/parser_fault.h"

namespace kuv::vemora::embedded_server {

/// Takes the faults that the parser finds in one document, and looks up where they stand.
class Located_Faults : public Fault_Sink {
 public:
  enum class Wanted { first, all };

  /// Appends to `found`. Without a document, as for the stored one, places are not known.
  Located_Faults(std::string name, const Json_Document* document, Wanted wanted,
                 std::vector<Check_Fault>& found);

  bool take(Parser_Fault fault) override;

 private:
  std::string name_;
  const Json_Document* document_;
  Wanted wanted_;
  std::vector<Check_Fault>& found_;
  Text_Place last_;
};

}  // namespace kuv::vemora::embedded_server
