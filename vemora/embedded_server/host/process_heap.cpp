// SPDX-FileCopyrightText: 2026 Vemora trigger manager maintainers
// SPDX-License-Identifier: GPL-2.0-only
#include "vemora/embedded_server/host/process_heap.h"

#include <malloc.h>

namespace kuv::vemora::embedded_server {

void suit_heap_to_passes() {
  mallopt(M_MXFAST, 0);  // NOLINT(concurrency-mt-unsafe): before there are threads
}

}  // namespace kuv::vemora::embedded_server
