// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include <cstdint>
#include <memory>

#include "vemora/embedded_server/host/document_judge.h"
#include "vemora/embedded_server/persistent/database.h"
#include "vemora/platform/export.h"

namespace kuv::vemora::operations {

/// Judges documents for the site of a database, as that server sees it. Warnings come in the order
/// of the documents, the configuration first.
VEMORA_API embedded_server::Judge_Documents warn_of_documents(
    std::shared_ptr<embedded_server::Database> database, std::uint64_t server_id);

}  // namespace kuv::vemora::operations
