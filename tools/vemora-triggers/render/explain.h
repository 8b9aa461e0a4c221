// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "tools/vemora-triggers/invocation/options.h"
#include "vemora/operations/explain/explain.h"

namespace kuv::vemora::tools {

void print_explanation(const Options& options, const operations::Explanation& explained);

}  // namespace kuv::vemora::tools
