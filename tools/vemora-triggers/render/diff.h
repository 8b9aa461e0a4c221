// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "tools/vemora-triggers/invocation/diff_request.h"
#include "tools/vemora-triggers/invocation/options.h"
#include "vemora/operations/history/document_difference.h"

namespace kuv::vemora::tools {

void print_difference(const Options& options, const Diff_Request& request,
                      const operations::Document_Difference& difference);

}  // namespace kuv::vemora::tools
