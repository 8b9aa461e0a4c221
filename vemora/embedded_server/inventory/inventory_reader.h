// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <memory>
#include <vector>

#include "vemora/embedded_server/documents/document_warning.h"
#include "vemora/embedded_server/documents/json_document.h"
#include "vemora/embedded_server/persistent/inventory.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::embedded_server {

/// The content of an inventory document. It must not be stored if it has faults.
struct Read_Inventory {
  Inventory inventory;
  // All of them, in the order of the document. A text that is a fault is no warning as well.
  std::vector<Document_Fault> faults;
  std::vector<Document_Warning> warnings;
};

/// Reads an inventory document. `stored` are the records in the database, to which the document may
/// refer. A text that `database` cannot store is a fault; null stands for a database that does not
/// exist yet, and can store any.
VEMORA_API Read_Inventory read_inventory(const Json_Document& document,
                                         const Inventory_References& stored,
                                         const std::shared_ptr<Database>& database = nullptr);

}  // namespace kuv::vemora::embedded_server
