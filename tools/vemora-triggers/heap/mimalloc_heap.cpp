// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <mimalloc.h>

#include "tools/vemora-triggers/heap/heap.h"

namespace kuv::vemora::tools {

/// The program ends after its pass, so freed memory is kept for what comes next in that pass. Large
/// pages, where the system has them, save most of the page faults.
void set_up_heap() {
  mi_option_disable(mi_option_allow_decommit);
  mi_option_enable(mi_option_large_os_pages);
}

void trim_heap() {
  mi_option_enable(mi_option_allow_decommit);
  mi_collect(true);
  mi_option_disable(mi_option_allow_decommit);
}

}  // namespace kuv::vemora::tools
