// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#pragma once

#include "tools/vemora-triggers/invocation/options.h"
#include "vemora/operations/match/match.h"

namespace kuv::vemora::tools {

void print_match(const Options& options, const operations::Match& match);
void print_event_counts(const Options& options, const operations::Event_Counts& counts);
void print_compared_counts(const Options& options, const operations::Compared_Counts& compared);

}  // namespace kuv::vemora::tools
