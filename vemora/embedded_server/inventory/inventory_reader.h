#pragma once

#include <memory>
#include <vector>

#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// What an inventory document says; when there are faults, it must not be stored.
struct Read_Inventory {
  Inventory inventory;
  std::vector<Document_Fault> faults;  ///< every one, in the order of the document
};

/// Reads a whole inventory document. `stored` is what the database holds already and the document
/// may refer to. A text that `database` cannot hold is a fault; one that is still to be made, null,
/// will hold any.
VEMORA_API Read_Inventory read_inventory(const Json_Document& document,
                                         const Inventory_References& stored,
                                         const std::shared_ptr<Database>& database = nullptr);

}  // namespace kuv::vemora::embedded_server
