// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <mimalloc.h>

#include "tools/vemora-triggers/heap/heap.h"

namespace kuv::vemora::tools {

/// The program ends after its pass, so freed memory is kept for what comes next in that pass. Large
/// pages are not asked for: a process that has just begun waits for the system to find and clear
/// them.
void set_up_heap() {
  mi_option_disable(mi_option_allow_decommit);
}

void trim_heap() {
  mi_option_enable(mi_option_allow_decommit);
  mi_collect(true);
  mi_option_disable(mi_option_allow_decommit);
}

}  // namespace kuv::vemora::tools
