// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include <malloc.h>

#include "tools/vemora-triggers/heap/heap.h"
#include "vemora/embedded_server/host/process_heap.h"

namespace kuv::vemora::tools {

void set_up_heap() {
  embedded_server::suit_heap_to_passes();
}

void trim_heap() {
  malloc_trim(0);
}

}  // namespace kuv::vemora::tools
